#pragma once

#include "panel/fingerForm.h"
#include "protocol/frames.h"

#include <QPointer>
#include <QtWidgets>

/// A panel without a worker, attached to a model: what it sends is kept as text, what a sensor would say is
/// handed to its slots.
struct PanelBench
{
    static constexpr uint8_t kFinger = 2; ///< eight channels, one block with its proximity inside
    static constexpr uint8_t kSmall = 31; ///< four channels, one block, twelve points

    explicit PanelBench(uint8_t prg = kFinger)
    {
        QObject::connect(panel, &fingerForm::si_cmdReq1, panel,
                         [this](uint8_t inf, uint8_t addr, const QByteArray &cmd, uint16_t rspLen) {
                             Q_ASSERT(inf == 0 && addr == 0x61);
                             sent += QString::fromLatin1(cmd.toHex()) + QLatin1Char('/') +
                                     QString::number(rspLen);
                         });
        attach(prg);
        sent.clear();
    }
    ~PanelBench() { delete panel; }
    Q_DISABLE_COPY(PanelBench)

    void attach(uint8_t prg, int packLen = 0)
    {
        sensor_ts info;
        info.addr = 0x61;
        info.type = 3;
        info.prg = prg;
        info.pack.resize(packLen);
        panel->sl_connectedFinger(0, 0x61, info);
    }
    /// What was sent since the last call, as "hex/rspLen", a blank between two.
    QString takeSent() { return std::exchange(sent, {}).join(QLatin1Char(' ')); }

    /// An answer to a request whose bytes from the command on are given in hex, as are those of the answer.
    void answer(const QByteArray &request, const QByteArray &response)
    {
        panel->sl_cmdRsp(0, 0x61, QByteArray::fromHex("aa5503" + request + "00000000"),
                         sealed(QByteArray::fromHex("55aa03" + response)));
    }
    /// A sample of kFinger, cut to so many bytes.
    static QVector<uint8_t> frame(int counter, int bytes = 62)
    {
        QByteArray whole = QByteArray::fromHex("55aa0385") + static_cast<char>(counter);
        // Channels 3, 2, -3, 0, 1, 1000001, 6, 7; 1.25 N, 0.5 N, 90 degrees; proximity 7.
        whole += QByteArray::fromHex("000300000002000000fdffffff000000000100000041420f000600000007000000"
                                     "0000a03f000000000000003f000000005a0007000000");
        const QByteArray pack = sealed(whole).left(bytes);
        return {pack.begin(), pack.end()};
    }
    void sample(int counter, int bytes = 62) const { panel->sl_updateData(0, 0x61, frame(counter, bytes)); }
    static QByteArray sealed(QByteArray frame)
    {
        frame.append(2, '\0');
        sealFrame(frame);
        return frame;
    }

    template<typename Widget>
    Widget *get(const char *name) const
    {
        auto *widget = panel->findChild<Widget *>(QLatin1String(name));
        Q_ASSERT(widget);
        return widget;
    }
    QString click(const char *button)
    {
        get<QAbstractButton>(button)->click();
        return takeSent();
    }
    QString text(const char *label) const { return get<QWidget>(label)->property("text").toString(); }
    QLineEdit *cell(const char *table, int row, int column) const
    {
        return qobject_cast<QLineEdit *>(get<QTableWidget>(table)->cellWidget(row, column));
    }

    QPointer<fingerForm> panel = new fingerForm(0, 0x61);
    QStringList sent;
};
