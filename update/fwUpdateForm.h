#pragma once

#include "update/UpdateJob.h"
#include "update/UpdateLink.h"

#include <QByteArray>
#include <QWidget>

#include <chrono>
#include <cstdint>
#include <memory>

class QRadioButton;

namespace Ui {
class fwUpdateForm;
}

/// The firmware page of the main window: leads one update from the choice of interface, image and reset
/// command to the result line. It owns its links and lives in the user interface thread; the transfers of a
/// link block that thread.
///
/// The text of the start button is the page's only state of being busy. A transfer that still runs when its
/// link is gone, because the page was left or the interface changed, reads nothing and so ends by its own
/// guard.
class fwUpdateForm : public QWidget
{
    Q_OBJECT

public:
    explicit fwUpdateForm(QWidget *parent = nullptr);
    ~fwUpdateForm() override;

    /// Builds up the interface that is chosen on the page. Called when the page is entered.
    void start();
    /// Gives all links back, without a word to a running transfer. Called when the page is left; safe on a
    /// page that never started.
    void stop();

    /// Appends the bare file name to *name and what is to be sent to *image; merge masks it. 0 on success, -1
    /// when the file is missing, -2 when it cannot be read, -3 when there is nothing in it to send.
    int loadAppFile(QString path, bool merge, QString *name, QByteArray *image);
    /// Path of the image as it stands on the page.
    QString getFile() const;

    /// Both act on the chosen interface, see UpdateLink. A read from a bridge that fails gives zeros or 0xFF;
    /// wait has no effect.
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
    void initJob();
    void selectFile();
    bool isBusy() const;
    bool isBridgeChosen() const;

    void showBridgeBoxes();
    void showSerialBoxes();
    QRadioButton *buttonOf(SensorLink::Kind kind) const;
    void makeLink(SensorLink::Kind kind);
    void uartInit() { makeLink(SensorLink::Kind::Serial); }
    void uartDeinit() { m_link.release(SensorLink::Kind::Serial); }
    void ch341Deinit() { m_link.release(SensorLink::Kind::Ch341); }
    void ch347Deinit() { m_link.release(SensorLink::Kind::Ch347); }
    void bridgeOpened();
    bool selectChannel();

    void beginUpdate();
    void endUpdate();
    void runUpdate();
    void showSuccess(std::chrono::milliseconds elapsed);
    void showFailure(UpdateJob::Failure failure);

    std::unique_ptr<Ui::fwUpdateForm> ui;
    UpdateLink m_link;
    UpdateJob m_job{m_link};
    int m_boardIndex = 0;
};
