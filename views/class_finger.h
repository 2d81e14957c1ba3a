#pragma once

#include "protocol/finger_info.h"
#include "protocol/sample.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVector>

#include <cstddef>
#include <cstdint>

class QWidget;

/// The signals of a class_finger, which itself is no QObject so that a QWidget can be its sibling base.
class class_fingerSignals : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    /// Once per accepted frame, after all lists are rebuilt.
    void si_dataUpdate();
    void si_channelReset(unsigned char channel);
    void si_channelEn(unsigned char channel, bool enabled);
};

/// A run of catalogue rows. Not owned: the rows outlive every decoder made from them.
struct FingerRows
{
    const finger_info_ts *first;
    std::size_t count;

    const finger_info_ts *begin() const { return first; }
    const finger_info_ts *end() const { return first + count; }
};

/// Decoder of sample frames and second base of every view. One catalogue row drives it; a view overrides the
/// operations of the quantities that it shows. User interface thread only.
class class_finger
{
public:
    /// The strings of one three-dimensional force block.
    struct ydds_str_ts
    {
        QString normal;     ///< newtons, two decimals
        QString tangential; ///< newtons, two decimals
        QString direction;  ///< degrees, integer
    };

    /// Audits the catalogue, then takes the first row of `prg`. A row that breaks a rule, or no row at all,
    /// is told in a modal box, which runs the event loop: whoever builds a decoder must expect that its own
    /// world has changed afterwards. With 0xFF the decoder is audited and left without a row.
    class_finger(unsigned char prg, QWidget *view);
    class_finger(unsigned char prg, QWidget *view, const FingerRows &rows);
    virtual ~class_finger() = default;
    class_finger(const class_finger &) = delete;
    class_finger &operator=(const class_finger &) = delete;

    /// One box for every rule that a row breaks, in table order. Returns the block length of the last row
    /// with a known block format, 0 when there is none.
    static unsigned char auditRows(const FingerRows &rows);

    /// Decodes one frame: 0 accepted, 1 wrong length, 2 wrong header, command byte or sum, 3 no catalogue
    /// row. A frame that is not accepted leaves lists and numbers as the last accepted one made them.
    unsigned char parseData(QByteArray data);
    /// The latest accepted frame; empty before the first.
    const Sample &sample() const { return m_sample; }

    /// Whether the numbers are to be shown in the picture; told by the panel, never by the decoder.
    virtual void setShowData(bool) {}
    /// A channel's raw value. Its lowest bit is the touch flag, the whole is thousandths of a newton.
    virtual void setData(unsigned char, unsigned int) {}
    virtual void setTouchState(unsigned char, bool) {}
    /// One three-dimensional force block: normal and tangential force in newtons, direction in degrees
    /// clockwise from up.
    virtual void setYdds(unsigned char, float, float, unsigned short) {}
    virtual void setSProx(unsigned char, unsigned int) {}
    virtual void setMProx(unsigned char, unsigned int) {}
    /// Force of one force channel and full scale of the model, newtons.
    virtual void setPress(unsigned char, float, float) {}
    /// Forces of all force channels at once; empty for a model without any.
    virtual void setPressNList(QVector<float>, float) {}
    virtual void setErrCode(unsigned char) {}

    /// The view's own widget and row: null without a row, although the view is a widget all the same.
    QWidget *widget = nullptr;
    class_fingerSignals signals;
    const finger_info_ts *info = nullptr;
    unsigned char seq = 0; ///< frame counter of the latest accepted frame
    QVector<QString> rawList;
    QVector<ydds_str_ts> yddsList;
    QVector<QString> sProxList;
    QVector<QString> mProxList;
    QVector<QString> proxList;   ///< self-capacitance first
    QVector<QString> statusList; ///< one element, or none for a model without a status byte
    QVector<QString> dataList;   ///< every string of the frame in frame order
    unsigned char modelIdx = 0xFF;
    unsigned char yddsLen = 0; ///< bytes of one three-dimensional force block

private:
    void takeRow(unsigned char prg, QWidget *view, const FingerRows &rows);
    void clearLists();
    void tellChannels();
    void tellBlocks();
    void tellProximity();

    Sample m_sample;
};
