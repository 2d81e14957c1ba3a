#pragma once

#include "engine/sensor_ts.h"
#include "panel/AnswerTable.h"
#include "panel/RequestPort.h"
#include "recording/SampleRecorder.h"

#include <QWidget>

#include <memory>

class CalibrationPage;
class ChannelTable;
class class_finger;
class ParameterPage;
class ValuePage;

namespace Ui {
class fingerForm;
}

/// The control panel of one sensor: its view, its values, its parameters.
///
/// A panel is known for life by bus entry and bus address. All panels hang on the same signals of the worker,
/// and every slot that is given another bus entry or address returns at once. Requests leave as finished
/// frames through si_cmdReq1() and nothing here waits for an answer. GUI thread only; closing a panel deletes
/// it.
class fingerForm : public QWidget
{
    Q_OBJECT

public:
    /// inf: bus entry 0 to 5; address: bus address 0x01 to 0x6F.
    fingerForm(unsigned char inf, unsigned char address, QWidget *parent = nullptr);
    ~fingerForm() override;

    /// Decoder and view of the attached sensor, or null. Deleted by the next reset at the latest.
    class_finger *view() const { return ff; }

    void getVersion();
    void getPrg();
    void getSN();
    void getSensorNum();
    void getDac();
    void getProxClearTouch();
    void getAutoDacPowerUp();
    /// Two requests: pressure, then proximity.
    void getReleaseThreshold();
    /// mode: 0 standard, 1 high sensitivity.
    void setMode(unsigned char mode);

    void getCaliNList();
    void getCaliCh(unsigned char ch);
    void getCaliState();
    /// Fills column `ch` of the calibration table from one raw value for each force point.
    void setCaliCh(unsigned char ch, const QVector<unsigned int> &curve);

    /// Each fills columns of the channel table from one value a channel; vectors of another length than the
    /// table change nothing.
    void setThreshold(const QVector<unsigned int> &values);
    void setTimeout(const QVector<unsigned int> &values);
    void setExcF(const QVector<unsigned char> &values);
    void setRange(const QVector<unsigned char> &values);
    void setFilter(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                   const QVector<float> &third);
    void setDac(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                const QVector<unsigned short> &third);

Q_SIGNALS:
    /// Once a sample, accepted or not: all values that the view shows, in frame order.
    void si_sendDataStrList(uint8_t infIdx, uint8_t addr, QVector<QString> data);
    /// A request for the worker; rspLen as in cmd_ts.
    void si_cmdReq1(uint8_t infIdx, uint8_t addr, QByteArray cmd, uint16_t rspLen);

public Q_SLOTS:
    /// hz: samples that the sensor made in the last second; rHz: those that arrived.
    void sl_setHz(uint8_t inf, uint8_t address, uint16_t hz, uint16_t rHz);
    void sl_updateData(uint8_t inf, uint8_t address, QVector<uint8_t> pack);
    /// Back to an empty panel. Sends nothing.
    void sl_reset(uint8_t inf, uint8_t address);
    void sl_cmdRsp(uint8_t inf, uint8_t address, QByteArray req, QByteArray rsp);
    /// A request without a usable answer shows nothing to the user.
    void sl_cmdRspErr(uint8_t inf, uint8_t address, QByteArray req, QByteArray rsp);
    /// Builds view, cells and tables for a sensor and asks it who it is. May open a box and with it an event
    /// loop, in which the panel may be deleted.
    void sl_connectedFinger(uint8_t inf, uint8_t address, sensor_ts info);

private:
    bool isMine(uint8_t inf, uint8_t address) const { return inf == infIdx && address == addr; }

    void hideWhatIsNotOffered();
    void addAnswers();
    void offerParameters(bool offered);
    bool buildView(uint8_t program);
    void askSensor(const sensor_ts &info);
    void save();
    void warnOfLostSample(bool lost);
    void showVersion(const QByteArray &rsp);
    void showSerialNumber(const QByteArray &rsp);
    void showProgram(const QByteArray &rsp);
    void showRunTime(const QByteArray &rsp);

    std::unique_ptr<Ui::fingerForm> ui;
    class_finger *ff = nullptr;
    uint8_t infIdx;
    uint8_t addr;
    RequestPort m_port;
    SampleRecorder m_recorder;
    AnswerTable m_answers;
    std::unique_ptr<ChannelTable> m_channels;
    std::unique_ptr<CalibrationPage> m_calibration;
    std::unique_ptr<ParameterPage> m_parameters;
    std::unique_ptr<ValuePage> m_values;
};
