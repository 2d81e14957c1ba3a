#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <memory>

class class_ch341;
class class_ch347;
class class_uart;
class class_ymodem;

namespace Ui {
class fwUpdateForm;
}

/// The firmware page of the main window: leads one update from the choice of interface, image and reset command to the
/// result line. It owns its links and lives in the user interface thread; the transfers of a link block that thread.
///
/// The text of the start button is the page's only state of being busy. A transfer that still runs when its link is gone,
/// because the page was left or the interface changed, reads nothing and so ends by its own guard.
class fwUpdateForm : public QWidget
{
    Q_OBJECT

public:
    explicit fwUpdateForm(QWidget *parent = nullptr);
    ~fwUpdateForm() override;

    /// Builds up the interface that is chosen on the page. Called when the page is entered.
    void start();
    /// Gives all links back, without a word to a running transfer. Called when the page is left; safe on a page that
    /// never started.
    void stop();

    /// Appends the bare file name to *name and what is to be sent to *image; merge masks it. 0 on success, -1 when the
    /// file is missing, -2 when it cannot be read, -3 when there is nothing in it to send.
    int loadAppFile(QString path, bool merge, QString *name, QByteArray *image);
    /// Path of the image as it stands on the page.
    QString getFile() const;

    /// Both act on the chosen interface, and on none when there is no link. On the serial line address and len mean
    /// nothing: everything is written, and all that has come is read. A read from a bridge that fails gives zeros or
    /// 0xFF; wait has no effect.
    void sensorWrite(uint8_t addr, QByteArray frame, uint16_t len);
    void sensorRead(uint8_t addr, QByteArray *out, uint16_t len, uint16_t wait);

Q_SIGNALS:
    void si_updateStart();
    void si_updateCancel();
    void si_updateReceived(QByteArray buf);
    void si_updateSended();
    void si_updateSuccess();
    void si_updateFail();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void init();
    void initInterfaces();
    void initResetCommand();
    void initFile();
    void selectFile();
    bool isBusy() const;
    bool isBridgeChosen() const;

    void ch341Chosen();
    void ch347Chosen();
    void uartChosen();
    void showBridgeBoxes();
    void showSerialBoxes();
    void ch341Init();
    void ch347Init();
    void uartInit();
    void ch341Deinit();
    void ch347Deinit();
    void uartDeinit();
    void ch341Connected();
    void ch347Connected();
    void pcaReset();
    bool openLink();
    void closeLink();
    bool selectChannel();
    void bridgeWrite(uint8_t addr, const QByteArray &frame, uint16_t len);
    uint8_t readSelectedChannels();

    void startClicked();
    void beginUpdate();
    void endUpdate();
    void runUpdate();
    void sendResetCommand();
    void sendResetAtAllRates(const QByteArray &command);
    void sendResetAtRate(const QByteArray &command, unsigned rate);
    void reopenAtChosenRate();
    void startTransfer(const QString &name, const QByteArray &image);
    void connectRequests(class_ymodem *sender);
    void connectResults(class_ymodem *sender);
    void transferFailed(const QString &text);
    void dropSender();
    void transferEnded();

    std::unique_ptr<Ui::fwUpdateForm> ui;
    class_ch341 *m_ch341 = nullptr;
    class_ch347 *m_ch347 = nullptr;
    class_uart *m_uart = nullptr;
    int m_boardIndex = 0;
    /// Keeps the address that a reset over the serial line puts in, for every later update.
    QByteArray m_defaultReset;
    QElapsedTimer m_elapsed;
    QPointer<class_ymodem> m_sender;
};
