#pragma once

#include <QObject>
#include <QVector>

#include <cstdint>

class ChannelTable;
class QByteArray;
class RequestPort;
struct finger_info_ts;

namespace Ui {
class fingerForm;
}

/// The calibration page: a curve of raw values over fixed force points for each calibrated channel, which are
/// the single force channels and behind them the three-dimensional blocks.
class CalibrationPage : public QObject
{
public:
    CalibrationPage(Ui::fingerForm &ui, RequestPort &port, ChannelTable &channels);

    /// Builds the tables for a model; null stands for one without a catalogue row.
    void setModel(const finger_info_ts *model);
    /// Empties the page but for the force points, which are read once.
    void clear();
    /// Tells how the sensor is to be cleared.
    void setFirmware(uint8_t majorVersion, uint8_t minorVersion);

    void getCaliNList();
    void getCaliCh(uint8_t channel);
    void getCaliState();
    /// Fills a column from one raw value for each force point.
    void setCaliCh(uint8_t channel, const QVector<unsigned int> &curve);

    void showForces(const QByteArray &rsp);
    void showCurve(const QByteArray &req, const QByteArray &rsp);
    void showState(const QByteArray &rsp);

private:
    int calibratedChannels() const;
    int calibrationPoints() const;
    QString cell(int row, int column) const;

    void refresh();
    void clearCurves();
    void clearChannel(uint8_t channel);
    void clearChannelPoints(uint8_t channel);
    void fillMaxAuto();
    void save() const;
    void sendForceThreshold();
    void sendPoint(uint8_t channel, uint8_t point, uint32_t value);
    void editPoint(uint8_t channel, uint8_t point, const QString &text);

    Ui::fingerForm &m_ui;
    RequestPort &m_port;
    ChannelTable &m_channels;
    const finger_info_ts *m_model = nullptr;
    QVector<float> m_forces; ///< newtons, ascending as the sensor sends them
    bool m_clearsInOneStep = false;
};
