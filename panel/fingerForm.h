#pragma once

#include "engine/sensor_ts.h"
#include "panel/RequestPort.h"
#include "panel/SampleRecorder.h"
#include "protocol/command.h"

#include <QPointer>
#include <QWidget>

#include <array>
#include <chrono>

class class_finger;
class dataForm;
class QAbstractButton;
class QLabel;
class QLineEdit;
class QTimer;

namespace Ui {
class fingerForm;
}

/// The control panel of one sensor: its view, its values, its parameters.
///
/// A panel is known for life by bus entry and bus address. All panels hang on the same signals of the worker, and every
/// slot that is given another bus entry or address returns at once. Requests leave as finished frames through
/// si_cmdReq1() and nothing here waits for an answer. GUI thread only; closing a panel deletes it.
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
    /// Rebuilds column `ch` of the calibration table from one raw value for each force point.
    void setCaliCh(unsigned char ch, const QVector<unsigned int> &curve);

    /// Each rebuilds columns of the channel table from one value a channel; vectors of another length than the table
    /// change nothing.
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
    /// Builds view, cells and tables for a sensor and asks it who it is. May open a box and with it an event loop, in
    /// which the panel may be deleted.
    void sl_connectedFinger(uint8_t inf, uint8_t address, sensor_ts info);

private:
    bool isMine(uint8_t inf, uint8_t address) const { return inf == infIdx && address == addr; }
    int channelCount() const;
    int calibratedChannels() const;
    int calibrationPoints() const;

    void hideWhatIsNotOffered();
    void setupTables();
    void cmdFuncInit();
    void wireControls();
    void wireParameterControls();
    void onClick(QAbstractButton *button, void (fingerForm::*handler)());

    void offerParameters(bool offered);
    bool buildView(uint8_t program);
    void addCells();
    void alignCells();
    void addSensorChannelWg(const QString &name, unsigned char type);
    void clearSensorChannelWg();
    void setupChannelTable();
    void setupCalibrationTables();
    void askSensor(const sensor_ts &info);
    void refreshCells();
    void save();
    void warnOfLostSample(bool lost);
    void outputTypeByPage(int page);
    void countdownTick();

    void requestOnClick(QAbstractButton *button, Command command);
    void requestPerChannel(Command command, int bytesPerChannel);
    void startCountdown(unsigned char seconds);
    void rereadLater(std::chrono::milliseconds delay);
    void groupRead();
    void setSendType(int type);
    void requestSendType(uint8_t type);
    void setIicAddress();
    void restoreFactory();
    void autoThreshold();
    void chooseStandardMode();
    void chooseHighSensitivityMode();
    void setTouchThreshold();
    void setPressThreshold();
    void setProxClearTouch();
    void setAutoDacPowerUp();
    void setTemperature();
    void setPressReleaseThreshold();
    void setProxReleaseThreshold();
    void resetChannel(unsigned char ch);
    void enableChannel(unsigned char ch, bool on);

    using AnswerHandler = void (fingerForm::*)(const QByteArray &req, const QByteArray &rsp);
    static AnswerHandler answerHandler(Command command);
    static AnswerHandler readHandler(Command command);
    void acknowledged(const QByteArray &req, const QByteArray &rsp);
    void done(const QByteArray &req, const QByteArray &rsp);
    void addressSet(const QByteArray &req, const QByteArray &rsp);
    void unknownAnswer(const QByteArray &req, const QByteArray &rsp);
    void showAutoDacPowerUp(const QByteArray &req, const QByteArray &rsp);
    void showPressReleaseThreshold(const QByteArray &req, const QByteArray &rsp);
    void showProxReleaseThreshold(const QByteArray &req, const QByteArray &rsp);
    void showDac(const QByteArray &req, const QByteArray &rsp);
    void showExcitation(const QByteArray &req, const QByteArray &rsp);
    void showRange(const QByteArray &req, const QByteArray &rsp);
    void showFilter(const QByteArray &req, const QByteArray &rsp);
    void showProxClearTouch(const QByteArray &req, const QByteArray &rsp);
    void showTimeout(const QByteArray &req, const QByteArray &rsp);
    void storeSensorNum(const QByteArray &req, const QByteArray &rsp);
    void showThreshold(const QByteArray &req, const QByteArray &rsp);
    void showTemperature(const QByteArray &req, const QByteArray &rsp);
    void showVersion(const QByteArray &req, const QByteArray &rsp);
    void showSerialNumber(const QByteArray &req, const QByteArray &rsp);
    void showProgram(const QByteArray &req, const QByteArray &rsp);
    void showRunTime(const QByteArray &req, const QByteArray &rsp);
    void showCalibrationForces(const QByteArray &req, const QByteArray &rsp);
    void showCalibration(const QByteArray &req, const QByteArray &rsp);
    void showCalibrationState(const QByteArray &req, const QByteArray &rsp);

    struct Column;
    template<typename Value>
    void fillColumn(const Column &column, const QVector<Value> &values);
    void sendCell(const Column &column, int row, const QString &text);
    std::array<QLineEdit *, 3> filterRow(int row) const;
    void placeFilterRow(int row, const std::array<QLineEdit *, 3> &edits);
    void sendFilter(int row, const QString &first, const QString &second, const QString &third);

    void refreshCalibration();
    void clearCalibration();
    bool clearsInOneStep() const;
    void clearChannel(uint8_t channel);
    void clearChannelPoints(uint8_t channel);
    void fillMaxAuto();
    void saveCalibration();
    /// Text of a cell of the calibration table; empty where there is none.
    QString calibrationCell(int row, int column) const;
    void sendCalibrationPoint(uint8_t channel, uint8_t point, uint32_t value);
    void editCalibrationPoint(uint8_t channel, const QLineEdit *edit);

    Ui::fingerForm *ui;
    class_finger *ff = nullptr;
    uint8_t infIdx;
    uint8_t addr;
    uint8_t fwPrg = 0;
    uint8_t sensorNum0 = 0;
    uint8_t sensorNum1 = 0;
    uint8_t sensorNum2 = 0;
    uint8_t sensorNum3 = 0;
    uint8_t prg = 0xFF;
    RequestPort port;
    SampleRecorder recorder;
    uint8_t countdown = 0; ///< seconds left
    QTimer *countdownTimer = nullptr;
    QList<dataForm *> dataFormList;
    QVector<float> caliNList;
    uint8_t sendType = 0;
};
