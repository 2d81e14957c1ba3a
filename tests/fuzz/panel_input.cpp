// The first byte chooses the model; each answer, sample or news of the worker takes one and what it brings.

#include "panel/fingerForm.h"
#include "protocol/finger_info.h"
#include "protocol/frames.h"
#include "tests/fuzz/FuzzBytes.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <QApplication>
#include <QDialog>

#include <array>
#include <map>
#include <memory>

namespace {

/// Models of few and of many channels, with proximity and without.
constexpr std::array<uint8_t, 4> kPrograms{0x02, 0x1F, 0x12, 0x60};
constexpr uint8_t kAddress = 0x61;

/// Closes each box that opens, from its own event loop.
class BoxCloser : public QObject
{
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<QDialog *>(watched) != nullptr)
            QMetaObject::invokeMethod(watched, "reject", Qt::QueuedConnection);
        return false;
    }
};

void attach(fingerForm &panel, uint8_t prg)
{
    sensor_ts sensor;
    sensor.addr = kAddress;
    sensor.prg = prg;
    sensor.type = 3;
    panel.sl_connectedFinger(0, kAddress, sensor);
}

fingerForm &panelOf(uint8_t prg)
{
    static const std::unique_ptr<BoxCloser> closer = [] {
        auto filter = std::make_unique<BoxCloser>();
        qApp->installEventFilter(filter.get());
        return filter;
    }();
    static std::map<uint8_t, fingerForm *> panels; // as long as the process
    fingerForm *&panel = panels[prg];
    if (panel == nullptr) {
        panel = new fingerForm(0, kAddress);
        QObject::connect(panel, &fingerForm::si_cmdReq1, panel,
                         [](uint8_t inf, uint8_t addr, const QByteArray &cmd, uint16_t) {
                             fuzzCheck(inf == 0 && addr == kAddress && cmd.size() >= 6 && frameSumFits(cmd),
                                       "whole requests to its own sensor");
                         });
        attach(*panel, prg);
    }
    return *panel;
}

void tell(fingerForm &panel, uint8_t prg, FuzzBytes &input)
{
    const uint8_t choice = input.byte();
    if (choice >= 0xE0) {
        const uint8_t hz = input.byte();
        panel.sl_setHz(0, kAddress, hz, choice);
    } else if (choice >= 0x80) {
        const QByteArray pack = input.answer(findFingerInfoByPrg(prg)->packLen);
        panel.sl_updateData(0, kAddress, QVector<uint8_t>(pack.begin(), pack.end()));
    } else {
        const QByteArray request = "\xAA\x55\x03" + input.take(9);
        const QByteArray response = input.answer(input.byte());
        if (choice < 0x70)
            panel.sl_cmdRsp(0, kAddress, request, response);
        else
            panel.sl_cmdRspErr(0, kAddress, request, response);
    }
}

} // namespace

void fuzzPanel(const uint8_t *input, std::size_t size)
{
    if (size == 0)
        return;
    const uint8_t prg = kPrograms.at(input[0] % kPrograms.size());
    fingerForm &panel = panelOf(prg);
    FuzzBytes bytes(input + 1, size - 1);
    // Takes much longer than all the rest.
    if (input[0] == 0xFF) {
        panel.sl_reset(0, kAddress);
        attach(panel, prg);
    }
    while (!bytes.isAtEnd())
        tell(panel, prg, bytes);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::sendPostedEvents();
}
