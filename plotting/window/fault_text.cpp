#include "plotting/window/fault_text.h"

#include <QCoreApplication>
#include <QStringList>

QString faultText(const StreamFaults &faults)
{
    const auto text = [](const char *source) { return QCoreApplication::translate("faultText", source); };
    const QVector<QPair<quint64, QString>> reasons{
        {faults.notNumbers, text("%L1 not numbers")},
        {faults.tooLong, text("%L1 too long")},
        {faults.otherWidth, text("%L1 of another width")},
        {faults.cut, text("%L1 cut")},
    };
    QStringList parts;
    for (const auto &[count, reason] : reasons) {
        if (count > 0)
            parts += reason.arg(count);
    }
    QString result;
    if (!parts.isEmpty())
        result = text("Records refused: %1").arg(parts.join(QStringLiteral(", ")));
    if (faults.gaps > 0) {
        if (!result.isEmpty())
            result += QStringLiteral("; ");
        result += text("values that are no numbers: %L1").arg(faults.gaps);
    }
    return result;
}
