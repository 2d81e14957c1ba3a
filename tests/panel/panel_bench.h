#pragma once

#include "panel/fingerForm.h"
#include "views/class_finger.h"

#include <QApplication>

#include <memory>

/// A panel without a worker: what it sends is kept as text, what a sensor would say is handed to its slots.
class PanelBench
{
public:
    static constexpr uint8_t kInf = 0;
    static constexpr uint8_t kAddr = 0x61;
    static constexpr uint8_t kType = 0x03;

    PanelBench()
        : panel(new fingerForm(kInf, kAddr))
    {
        QObject::connect(panel, &fingerForm::si_cmdReq1, panel,
                         [this](uint8_t inf, uint8_t addr, const QByteArray &cmd, uint16_t rspLen) {
                             Q_ASSERT(inf == kInf && addr == kAddr);
                             sent += QString::fromLatin1(cmd.toHex()) + QLatin1Char('/') +
                                     QString::number(rspLen);
                         });
    }
    ~PanelBench() { delete panel; }
    PanelBench(const PanelBench &) = delete;
    PanelBench &operator=(const PanelBench &) = delete;

    void attach(uint8_t prg, int packLen = 0)
    {
        sensor_ts info;
        info.infIdx = kInf;
        info.addr = kAddr;
        info.type = kType;
        info.prg = prg;
        info.pack.resize(packLen);
        panel->sl_connectedFinger(kInf, kAddr, info);
    }
    /// What was sent since the last call, as "hex/rspLen".
    QStringList takeSent() { return std::exchange(sent, {}); }

    /// An answer in hex without its sum.
    void answer(const QString &request, const QString &responseWithoutSum)
    {
        panel->sl_cmdRsp(kInf, kAddr, QByteArray::fromHex(request.toLatin1()),
                         sealed(QByteArray::fromHex(responseWithoutSum.toLatin1())));
    }
    void sample(const QByteArray &frame)
    {
        QVector<uint8_t> pack;
        for (const char byte : frame)
            pack += static_cast<uint8_t>(byte);
        panel->sl_updateData(kInf, kAddr, pack);
    }

    template<typename Widget>
    Widget *get(const char *name) const
    {
        auto *widget = panel->findChild<Widget *>(QLatin1String(name));
        Q_ASSERT(widget);
        return widget;
    }

    /// Widgets of the page of values, in the order of the cells. A view may have cells of its own.
    template<typename Widget>
    QList<Widget *> cells(const char *name) const
    {
        return get<QWidget>("sawgDataList")->findChildren<Widget *>(QLatin1String(name));
    }

    static QByteArray sealed(QByteArray frame)
    {
        unsigned int sum = 0;
        for (const char byte : frame)
            sum += static_cast<uint8_t>(byte);
        frame += static_cast<char>(sum & 0xFFU);
        frame += static_cast<char>(sum >> 8U & 0xFFU);
        return frame;
    }
    /// A frame of the 62-byte model with 8 channels, one block, its proximity in the block.
    static QByteArray fingerFrame(uint8_t counter, const QVector<int32_t> &channels, uint32_t proximity = 7)
    {
        QByteArray frame = QByteArray::fromHex("55aa0385");
        frame += static_cast<char>(counter);
        frame += '\0';
        for (const int32_t value : channels)
            appendWord(frame, static_cast<uint32_t>(value));
        // 1.25 N normal, 0.5 N tangential, 90 degrees.
        frame += QByteArray::fromHex("0000a03f000000000000003f000000005a00");
        appendWord(frame, proximity);
        return sealed(frame);
    }

    fingerForm *panel;
    QStringList sent;

private:
    static void appendWord(QByteArray &frame, uint32_t word)
    {
        for (unsigned int shift = 0; shift < 32; shift += 8)
            frame += static_cast<char>(word >> shift & 0xFFU);
    }
};
