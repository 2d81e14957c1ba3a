#include "panel/CalibrationPage.h"

#include "ui_fingerForm.h"

#include "panel/ChannelTable.h"
#include "panel/RequestPort.h"
#include "panel/cell_edit.h"
#include "panel/force_threshold.h"
#include "protocol/finger_info.h"
#include "protocol/payloads.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QIntValidator>
#include <QLineEdit>
#include <QStandardPaths>

#include <array>

using namespace std::chrono_literals;

namespace {

constexpr int kForceListOverhead = kFrameOverhead + 1;
/// The largest raw value that fits into an ordinary request.
constexpr uint32_t kShortPointMax = 0xFFFFFE;
constexpr std::chrono::milliseconds kThresholdReread = 200ms;

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
    std::array<QString, kVerdicts.size()> lists;
    for (int channel = 0; channel < channels; ++channel) {
        const int code = FrameReader(response).byteAt(kPayloadAt + channel);
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

CalibrationPage::CalibrationPage(Ui::fingerForm &ui, RequestPort &port, ChannelTable &channels)
    : m_ui(ui)
    , m_port(port)
    , m_channels(channels)
{
    for (QHeaderView *header : {ui.tbwCaliTable->horizontalHeader(), ui.tbwCaliTable->verticalHeader()})
        header->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (QTableWidget *table : {ui.tbwCaliCh, ui.tbwCaliChGroup, ui.tbwCaliMaxAuto})
        stretchHeaders(table, true);
    connect(ui.pbtnCaliRefresh, &QAbstractButton::clicked, this, &CalibrationPage::refresh);
    connect(ui.pbtnCaliClear, &QAbstractButton::clicked, this, &CalibrationPage::clearCurves);
    connect(ui.pbtnCaliMaxAuto, &QAbstractButton::clicked, this, &CalibrationPage::fillMaxAuto);
    connect(ui.pbtnCaliSave, &QAbstractButton::clicked, this, &CalibrationPage::save);
    connect(ui.pbtnSetPressThreshold, &QAbstractButton::clicked, this, &CalibrationPage::sendForceThreshold);
}

void CalibrationPage::setModel(const finger_info_ts *model)
{
    m_model = model;
    QStringList channels;
    for (int i = 0; i < calibratedChannels(); ++i)
        channels += QString::number(i);
    // A header that follows the contents would measure all cells at every label.
    QHeaderView *header = m_ui.tbwCaliTable->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    m_ui.tbwCaliTable->setRowCount(calibrationPoints());
    m_ui.tbwCaliTable->setColumnCount(calibratedChannels());
    m_ui.tbwCaliTable->setHorizontalHeaderLabels(channels);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_ui.tbwCaliMaxAuto->setRowCount(1);
    m_ui.tbwCaliMaxAuto->setColumnCount(calibratedChannels());
}

void CalibrationPage::clear()
{
    m_model = nullptr;
    m_clearsInOneStep = false;
    m_ui.lbCaliTableState->clear();
    emptyTable(m_ui.tbwCaliTable);
}

// Firmware from 1.3 on has a command for it.
void CalibrationPage::setFirmware(uint8_t majorVersion, uint8_t minorVersion)
{
    m_clearsInOneStep = majorVersion >= 2 || (majorVersion == 1 && minorVersion >= 3);
}

int CalibrationPage::calibratedChannels() const
{
    return m_model ? m_model->forceChNum + m_model->yddsNum : 0;
}

int CalibrationPage::calibrationPoints() const
{
    return m_model ? m_model->caliNum : 0;
}

void CalibrationPage::getCaliNList()
{
    m_port.request(Command::GetCalibrationForces, {},
                   static_cast<uint16_t>(4 * calibrationPoints() + kForceListOverhead));
}

void CalibrationPage::getCaliCh(uint8_t channel)
{
    m_port.request(Command::GetCalibration, {channel},
                   static_cast<uint16_t>(4 * calibrationPoints() + kFrameOverhead));
}

void CalibrationPage::getCaliState()
{
    const auto length = static_cast<uint16_t>(calibratedChannels() + kFrameOverhead);
    qDebug("getCaliState:%d", length);
    m_port.request(Command::GetCalibrationState, {}, length);
}

void CalibrationPage::showForces(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    m_ui.cbbCaliList->clear();
    m_forces.clear();
    QStringList labels;
    for (int i = 0; i < reader.signedAt(kPayloadAt); ++i) {
        m_forces += reader.floatAt(kPayloadAt + 1 + 4 * i);
        labels += withOneDecimal(m_forces.last());
    }
    m_ui.cbbCaliList->addItems(labels);
    m_ui.tbwCaliTable->setVerticalHeaderLabels(labels);
}

// The answer does not say which channel it is of; the request does.
void CalibrationPage::showCurve(const QByteArray &req, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    QVector<unsigned int> curve;
    for (int i = 0; i < calibrationPoints(); ++i)
        curve += reader.u32At(kPayloadAt + 4 * i);
    setCaliCh(FrameReader(req).byteAt(kPayloadAt), curve);
}

void CalibrationPage::showState(const QByteArray &rsp)
{
    const QString text = verdictText(rsp, calibratedChannels());
    const bool good = text.isEmpty();
    m_ui.lbCaliTableState->setStyleSheet(good ? QStringLiteral("QLabel#lbCaliTableState{color:black}")
                                              : QStringLiteral("QLabel#lbCaliTableState{color:red}"));
    m_ui.lbCaliTableState->setText(good ? QObject::tr("标定参数正常") : text);
}

void CalibrationPage::setCaliCh(uint8_t channel, const QVector<unsigned int> &curve)
{
    QTableWidget *table = m_ui.tbwCaliTable;
    if (channel >= calibratedChannels() || curve.size() != calibrationPoints()) {
        qDebug("setCaliCh err:%d,%d,%d", channel, curve.size(), calibrationPoints());
        return;
    }
    for (int row = 0; row < curve.size(); ++row) {
        const QString text = QString::number(curve.at(row));
        if (QLineEdit *edit = cellEdit(table, row, channel)) {
            refillCellEdit(edit, text);
            edit->setStyleSheet(cellStyle(curve, row));
            continue;
        }
        QLineEdit *edit = makeCellEdit(table, text);
        edit->setObjectName(QStringLiteral("le") + QString::number(row));
        edit->setStyleSheet(cellStyle(curve, row));
        edit->setValidator(new QIntValidator(0, 2147483647, edit));
        connect(edit, &QLineEdit::editingFinished, this,
                [this, channel, row, edit] { editPoint(channel, static_cast<uint8_t>(row), edit->text()); });
        table->setCellWidget(row, channel, edit);
    }
    table->resizeRowsToContents();
    table->resizeColumnsToContents();
}

void CalibrationPage::editPoint(uint8_t channel, uint8_t point, const QString &text)
{
    const uint value = text.toUInt();
    qDebug("diff:%u", value);
    sendPoint(channel, point, value);
    getCaliCh(channel);
    getCaliState();
}

void CalibrationPage::sendPoint(uint8_t channel, uint8_t point, uint32_t value)
{
    if (value <= kShortPointMax) {
        m_port.request(Command::SetCalibrationPoint,
                       {channel, point, static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8U),
                        static_cast<uint8_t>(value >> 16U)});
        return;
    }
    QByteArray payload;
    payload += static_cast<char>(channel);
    payload += static_cast<char>(point);
    appendWord(payload, value);
    m_port.longRequest(Command::SetCalibrationPoint, payload);
}

QString CalibrationPage::cell(int row, int column) const
{
    const QLineEdit *edit = cellEdit(m_ui.tbwCaliTable, row, column);
    return edit ? edit->text() : QString();
}

void CalibrationPage::refresh()
{
    for (int channel = 0; channel < calibratedChannels(); ++channel)
        getCaliCh(static_cast<uint8_t>(channel));
    getCaliState();
}

void CalibrationPage::clearCurves()
{
    for (int column = 0; column < m_ui.tbwCaliMaxAuto->columnCount(); ++column) {
        const auto channel = static_cast<uint8_t>(column);
        if (m_clearsInOneStep)
            clearChannel(channel);
        else
            clearChannelPoints(channel);
    }
    getCaliState();
}

void CalibrationPage::clearChannel(uint8_t channel)
{
    const QByteArray points(4 * calibrationPoints(), '\0');
    m_port.longRequest(Command::ClearCalibration, QByteArray(1, static_cast<char>(channel)) + points);
    getCaliCh(channel);
}

void CalibrationPage::clearChannelPoints(uint8_t channel)
{
    bool sent = false;
    for (int row = 0; row < calibrationPoints(); ++row) {
        if (cell(row, channel).toUInt() == 0)
            continue;
        sendPoint(channel, static_cast<uint8_t>(row), 0);
        sent = true;
    }
    if (sent)
        getCaliCh(channel);
}

void CalibrationPage::fillMaxAuto()
{
    for (int column = 0; column < m_ui.tbwCaliMaxAuto->columnCount(); ++column)
        if (auto *button = qobject_cast<QAbstractButton *>(m_ui.tbwCaliMaxAuto->cellWidget(0, column)))
            Q_EMIT button->clicked();
}

void CalibrationPage::save() const
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    folder.mkpath(QStringLiteral("."));
    QFile file(QDir::toNativeSeparators(folder.filePath(QStringLiteral("caliTable.csv"))));
    if (file.exists())
        file.remove();
    qDebug("%s", qUtf8Printable(file.fileName()));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    for (int row = 0; row < m_ui.tbwCaliTable->rowCount(); ++row) {
        QString line = row < m_forces.size() ? withOneDecimal(m_forces.at(row)) : QString();
        for (int column = 0; column < m_ui.tbwCaliTable->columnCount(); ++column)
            line += QLatin1Char(',') + cell(row, column);
        file.write(line.toLatin1() + ",\n");
    }
}

// Reads the threshold of a force off the channel's curve and sends it.
void CalibrationPage::sendForceThreshold()
{
    const uint channel = m_ui.cbbSetPressThresholdCh->currentText().toUInt();
    const QTableWidget *table = m_ui.tbwCaliTable;
    if (m_forces.isEmpty() || table->rowCount() == 0 || channel >= static_cast<uint>(table->columnCount())) {
        qDebug("no calibration of channel:%u", channel);
        return;
    }
    QVector<uint32_t> curve;
    for (int row = 0; row < table->rowCount(); ++row)
        curve += cell(row, static_cast<int>(channel)).toUInt();
    qDebug() << curve;
    const uint32_t threshold =
        thresholdForForce(m_forces, curve, static_cast<float>(m_ui.dspbSetPressThresholdPress->value()));
    qDebug("%u", threshold);
    m_port.request(Command::SetChannelThreshold,
                   payloadByteAndWord(static_cast<uint8_t>(channel), threshold));
    m_channels.rereadLater(kThresholdReread);
}
