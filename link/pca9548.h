#pragma once

#include "link/class_ch341.h"
#include "link/class_ch347.h"

#include <QStringList>

#include <array>
#include <cstdint>

/// The PCA9548 multiplexer behind a bridge: a byte written to it selects channels, one bit a channel; a byte read from it
/// is the selection.
constexpr uint8_t kPca9548Address = 0x70;

/// One way in which a sensor can be wired to the multiplexer.
struct AdapterBoard
{
    const char
        *text;    ///< source text, UTF-8; the boards' texts are translated in the context of who shows them
    uint8_t mask; ///< channels to select for it
};

/// In the order in which the user is offered them; row 0 stands for no multiplexer at all.
extern const std::array<AdapterBoard, 14> adapterBoards;

/// Texts of adapterBoards, translated in the given context: "QObject", or the class name of a form with texts of its own.
QStringList adapterBoardNames(const char *context);

/// Mask of the row, 0 when there is no such row.
uint8_t adapterBoardMask(int index);

/// Pulls the multiplexer's reset input low and lets it go again.
void pulsePcaReset(class_ch341 &link);
void pulsePcaReset(class_ch347 &link);

/// Reset pulse, then deselects all channels.
template<typename Bridge>
void pcaReset(Bridge &link)
{
    pulsePcaReset(link);
    const uint8_t noChannel = 0x00;
    link.write(kPca9548Address, &noChannel, 1);
}

/// Bus settings right after a bridge has been opened, for sensors at the usual 100 kHz.
void setUpSensorBus(class_ch341 &link);
void setUpSensorBus(class_ch347 &link);

/// Bus settings right after a bridge has been opened, at a speed of the user's choice. The CH347 keeps the driver mode that
/// it has.
void setUpBusAtSpeed(class_ch341 &link, ch341_iic_speed_te speed);
void setUpBusAtSpeed(class_ch347 &link, ch347_iic_speed_te speed);
