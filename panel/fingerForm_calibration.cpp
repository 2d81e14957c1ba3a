// The calibration page: a curve of raw values over fixed force points for each calibrated channel.

#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "panel/cell_edit.h"
#include "protocol/finger_info.h"
#include "protocol/payloads.h"
#include "views/class_finger.h"

#include <QDir>
#include <QFile>
#include <QIntValidator>
#include <QLineEdit>
#include <QStandardPaths>

#include <array>

namespace {

constexpr int kForceListOverhead = 7;
/// The largest raw value that fits into an ordinary request.
constexpr uint32_t kShortPointMax = 0xFFFFFE;

QString withOneDecimal(float force)
{
    return QString::number(static_cast<double>(force), 'f', 1);
}

// Yellow: not set. Red: the curve does not rise here.
QString cellStyle(const QVector<unsigned int> &curve, int row)
{
    const unsigned int value = curve.at(row);
    if (value == 0)
        return QStringLiteral("background-color: yellow;");
    if (row > 0 && value <= curve.at(row - 1))
        return QStringLiteral("background-color: red;");
    if (row + 1 < curve.size() && value >= curve.at(row + 1))
        return QStringLiteral("background-color: red;");
    return QStringLiteral("background-color: white;");
}

/// What the sensor says of its curves, in the order of the text.
struct Verdict
{
    int code;
    const char *label;
};
constexpr int kUnknownVerdict = -1;
constexpr std::array<Verdict, 7> kVerdicts = {{{1, QT_TRANSLATE_NOOP("QObject", "未标定:")},
                                               {2, QT_TRANSLATE_NOOP("QObject", "错误:")},
                                               {4, QT_TRANSLATE_NOOP("QObject", "一致性差:")},
                                               {5, QT_TRANSLATE_NOOP("QObject", "变化小:")},
                                               {kUnknownVerdict, QT_TRANSLATE_NOOP("QObject", "未知:")},
                                               {3, QT_TRANSLATE_NOOP("QObject", "检查固件:")},
                                               {6, QT_TRANSLATE_NOOP("QObject", "0.1N不存在:")}}};

size_t verdictIndex(int code)
{
    size_t unknown = 0;
    for (size_t i = 0; i < kVerdicts.size(); ++i) {
        if (kVerdicts.at(i).code == code)
            return i;
        if (kVerdicts.at(i).code == kUnknownVerdict)
            unknown = i;
    }
    return unknown;
}

QString verdictText(const QByteArray &response, int channels)
{
    constexpr int firstCode = 4;
    std::array<QString, kVerdicts.size()> lists;
    for (int channel = 0; channel < channels; ++channel) {
        const int code = FrameReader(response).byteAt(firstCode + channel);
        if (code != 0)
            lists.at(verdictIndex(code)) += QString::number(channel) + QLatin1Char(',');
    }
    QString text;
    for (size_t i = 0; i < lists.size(); ++i)
        if (!lists.at(i).isEmpty())
            text += QObject::tr(kVerdicts.at(i).label) + lists.at(i) + QStringLiteral("    ");
    return text;
}

} // namespace

int fingerForm::calibratedChannels() const
{
    return ff && ff->info ? ff->info->forceChNum + ff->info->yddsNum : 0;
}

int fingerForm::calibrationPoints() const
{
    return ff && ff->info ? ff->info->caliNum : 0;
}

void fingerForm::setupCalibrationTables()
{
    QStringList channels;
    for (int i = 0; i < calibratedChannels(); ++i)
        channels += QString::number(i);
    ui->tbwCaliTable->setRowCount(calibrationPoints());
    ui->tbwCaliTable->setColumnCount(calibratedChannels());
    ui->tbwCaliTable->setHorizontalHeaderLabels(channels);
    ui->tbwCaliMaxAuto->setRowCount(1);
    ui->tbwCaliMaxAuto->setColumnCount(calibratedChannels());
}

void fingerForm::getCaliNList()
{
    port.request(Command::GetCalibrationForces, {},
                 static_cast<uint16_t>(4 * calibrationPoints() + kForceListOverhead));
}

void fingerForm::getCaliCh(unsigned char ch)
{
    port.request(Command::GetCalibration, {ch},
                 static_cast<uint16_t>(4 * calibrationPoints() + kFrameOverhead));
}

void fingerForm::getCaliState()
{
    const auto length = static_cast<uint16_t>(calibratedChannels() + kFrameOverhead);
    qDebug("getCaliState:%d", length);
    port.request(Command::GetCalibrationState, {}, length);
}

void fingerForm::showCalibrationForces(const QByteArray &, const QByteArray &rsp)
{
    constexpr int countPosition = 4;
    const FrameReader reader(rsp);
    ui->cbbCaliList->clear();
    caliNList.clear();
    QStringList labels;
    for (int i = 0; i < reader.signedAt(countPosition); ++i) {
        caliNList += reader.floatAt(countPosition + 1 + 4 * i);
        labels += withOneDecimal(caliNList.last());
    }
    ui->cbbCaliList->addItems(labels);
    ui->tbwCaliTable->setVerticalHeaderLabels(labels);
}

// The answer does not say which channel it is of; the request does.
void fingerForm::showCalibration(const QByteArray &req, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    QVector<unsigned int> curve;
    for (int i = 0; i < calibrationPoints(); ++i)
        curve += reader.u32At(4 + 4 * i);
    setCaliCh(FrameReader(req).byteAt(4), curve);
}

void fingerForm::setCaliCh(unsigned char ch, const QVector<unsigned int> &curve)
{
    QTableWidget *table = ui->tbwCaliTable;
    if (ch >= calibratedChannels() || curve.size() != calibrationPoints()) {
        qDebug("setCaliCh err:%d,%d,%d", ch, curve.size(), calibrationPoints());
        return;
    }
    for (int row = 0; row < curve.size(); ++row) {
        const QString text = QString::number(curve.at(row));
        if (QLineEdit *edit = cellEdit(table, row, ch)) {
            refillCellEdit(edit, text);
            edit->setStyleSheet(cellStyle(curve, row));
            continue;
        }
        QLineEdit *edit = makeCellEdit(table, text);
        edit->setObjectName(QStringLiteral("le") + QString::number(row));
        edit->setStyleSheet(cellStyle(curve, row));
        edit->setValidator(new QIntValidator(0, 2147483647, edit));
        connect(edit, &QLineEdit::editingFinished, this,
                [this, ch, edit] { editCalibrationPoint(ch, edit); });
        table->setCellWidget(row, ch, edit);
    }
    table->resizeRowsToContents();
    table->resizeColumnsToContents();
}

void fingerForm::editCalibrationPoint(uint8_t channel, const QLineEdit *edit)
{
    const uint value = edit->text().toUInt();
    qDebug("diff:%u", value);
    const int point = edit->objectName().remove(QStringLiteral("le")).toInt();
    sendCalibrationPoint(channel, static_cast<uint8_t>(point), value);
    getCaliCh(channel);
    getCaliState();
}

void fingerForm::sendCalibrationPoint(uint8_t channel, uint8_t point, uint32_t value)
{
    if (value <= kShortPointMax) {
        port.request(Command::SetCalibrationPoint,
                     {channel, point, static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8U),
                      static_cast<uint8_t>(value >> 16U)});
        return;
    }
    QByteArray payload;
    payload += static_cast<char>(channel);
    payload += static_cast<char>(point);
    appendWord(payload, value);
    port.longRequest(Command::SetCalibrationPoint, payload);
}

QString fingerForm::calibrationCell(int row, int column) const
{
    const QLineEdit *edit = cellEdit(ui->tbwCaliTable, row, column);
    return edit ? edit->text() : QString();
}

void fingerForm::refreshCalibration()
{
    for (int ch = 0; ch < calibratedChannels(); ++ch)
        getCaliCh(static_cast<unsigned char>(ch));
    getCaliState();
}

void fingerForm::clearCalibration()
{
    const bool oneStep = clearsInOneStep();
    for (int column = 0; column < ui->tbwCaliMaxAuto->columnCount(); ++column) {
        const auto channel = static_cast<uint8_t>(column);
        if (oneStep)
            clearChannel(channel);
        else
            clearChannelPoints(channel);
    }
    getCaliState();
}

// Firmware from 1.3 on has a command for it.
bool fingerForm::clearsInOneStep() const
{
    const QStringList parts = ui->lbVersion->text().split(QLatin1Char('.'));
    if (parts.size() < 2)
        return false;
    const int major = parts.at(0).toInt();
    return major >= 2 || (major == 1 && parts.at(1).toInt() >= 3);
}

void fingerForm::clearChannel(uint8_t channel)
{
    const QByteArray points(4 * calibrationPoints(), '\0');
    port.longRequest(Command::ClearCalibration, QByteArray(1, static_cast<char>(channel)) + points);
    getCaliCh(channel);
}

void fingerForm::clearChannelPoints(uint8_t channel)
{
    bool sent = false;
    for (int row = 0; row < calibrationPoints(); ++row) {
        if (calibrationCell(row, channel).toUInt() == 0)
            continue;
        sendCalibrationPoint(channel, static_cast<uint8_t>(row), 0);
        sent = true;
    }
    if (sent)
        getCaliCh(channel);
}

void fingerForm::fillMaxAuto()
{
    for (int column = 0; column < ui->tbwCaliMaxAuto->columnCount(); ++column)
        if (auto *button = qobject_cast<QAbstractButton *>(ui->tbwCaliMaxAuto->cellWidget(0, column)))
            Q_EMIT button->clicked();
}

void fingerForm::showCalibrationState(const QByteArray &, const QByteArray &rsp)
{
    const QString text = verdictText(rsp, calibratedChannels());
    const bool good = text.isEmpty();
    ui->lbCaliTableState->setStyleSheet(good ? QStringLiteral("QLabel#lbCaliTableState{color:black}")
                                             : QStringLiteral("QLabel#lbCaliTableState{color:red}"));
    ui->lbCaliTableState->setText(good ? QObject::tr("标定参数正常") : text);
}

void fingerForm::saveCalibration()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    folder.mkpath(QStringLiteral("."));
    QFile file(QDir::toNativeSeparators(folder.filePath(QStringLiteral("caliTable.csv"))));
    if (file.exists())
        file.remove();
    qDebug("%s", qUtf8Printable(file.fileName()));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    for (int row = 0; row < ui->tbwCaliTable->rowCount(); ++row) {
        QString line = row < caliNList.size() ? withOneDecimal(caliNList.at(row)) : QString();
        for (int column = 0; column < ui->tbwCaliTable->columnCount(); ++column)
            line += QLatin1Char(',') + calibrationCell(row, column);
        file.write(line.toLatin1() + ",\n");
    }
}
