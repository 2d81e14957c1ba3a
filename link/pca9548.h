#pragma once

#include <QStringList>

#include <array>
#include <cstdint>

/// The PCA9548 multiplexer behind a bridge: a byte written to it selects channels, one bit a channel; a byte
/// read from it is the selection.
constexpr uint8_t kPca9548Address = 0x70;

/// One way in which a sensor can be wired to the multiplexer.
struct AdapterBoard
{
    /// Source text, UTF-8; the boards' texts are translated in the context of who shows them.
    const char *text;
    uint8_t mask; ///< channels to select for it
};

/// In the order in which the user is offered them; row 0 stands for no multiplexer at all.
extern const std::array<AdapterBoard, 14> adapterBoards;

/// Texts of adapterBoards, translated in the given context: "QObject", or the class name of a form with texts
/// of its own.
QStringList adapterBoardNames(const char *context);

/// Mask of the row, 0 when there is no such row.
uint8_t adapterBoardMask(int index);
