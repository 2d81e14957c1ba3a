#include "tools/ChannelBoxes.h"

#include "link/pca9548.h"

#include <QCheckBox>
#include <QtAlgorithms>

ChannelBoxes::ChannelBoxes(const Channels &channels, const Boards &boards)
    : m_channels(channels)
{
    int row = 0;
    for (QCheckBox *board : boards) {
        QCheckBox *channel = m_channels.at(qCountTrailingZeroBits(adapterBoardMask(++row)));
        QObject::connect(board, &QCheckBox::toggled, channel, &QCheckBox::setChecked);
        QObject::connect(channel, &QCheckBox::toggled, board, &QCheckBox::setChecked);
    }
}

uint8_t ChannelBoxes::mask() const
{
    unsigned int mask = 0;
    for (size_t i = 0; i < m_channels.size(); ++i)
        mask |= m_channels[i]->isChecked() ? 1U << i : 0U;
    return static_cast<uint8_t>(mask);
}

void ChannelBoxes::show(uint8_t mask)
{
    for (size_t i = 0; i < m_channels.size(); ++i)
        m_channels[i]->setChecked((mask & 1U << i) != 0);
}
