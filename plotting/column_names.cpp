#include "plotting/column_names.h"

#include <QRegularExpression>

namespace {

/// Reads the headings of one recording in their order.
class HeadingReader
{
public:
    QString name(const QString &heading, bool isLast)
    {
        static const QRegularExpression english(
            QStringLiteral("^(\\d+)(Normal Force|Tangential Force|Angle)$"));
        static const QRegularExpression status(QStringLiteral("^Status\\d+$"));
        static const QRegularExpression marks(QStringLiteral("^(\\?+)(\\d+)(_\\?+)?$"));
        if (const auto match = english.match(heading); match.hasMatch())
            return match.captured(2) + QLatin1Char(' ') + match.captured(1);
        if (isLast && status.match(heading).hasMatch())
            return QStringLiteral("Status");
        if (const auto match = marks.match(heading); match.hasMatch())
            return lostName(match.capturedLength(1), match.captured(2), match.capturedLength(3), isLast);
        return heading;
    }

private:
    QString lostName(int marks, const QString &number, int marksBehind, bool isLast)
    {
        const bool isChannel = marks == 2 && m_channelsGoOn && number.toInt() == m_channels;
        if (isChannel)
            return QStringLiteral("Ch%1").arg(m_channels++);
        m_channelsGoOn = false;
        if (marks == 2 && isLast)
            return QStringLiteral("Status");
        if (marks == 3 && marksBehind == 3)
            return QStringLiteral("Angle ") + number;
        if (marks == 3) {
            const bool isFirst = number != m_block;
            m_block = number;
            return (isFirst ? QStringLiteral("Normal Force ") : QStringLiteral("Tangential Force ")) + number;
        }
        m_isMutual = m_isMutual || number.toInt() < m_proximities;
        ++m_proximities;
        return (m_isMutual ? QStringLiteral("Mutual Proximity") : QStringLiteral("Self Proximity")) + number;
    }

    bool m_channelsGoOn = true;
    int m_channels = 0;
    int m_proximities = 0;
    QString m_block;
    bool m_isMutual = false;
};

} // namespace

QStringList columnNames(const QStringList &headings)
{
    QStringList names;
    HeadingReader reader;
    for (int i = 0; i < headings.size(); ++i)
        names += reader.name(headings.at(i), i + 1 == headings.size());
    return names;
}
