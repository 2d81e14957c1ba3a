#include "link/pca9548.h"

#include <QCoreApplication>

const std::array<AdapterBoard, 14> adapterBoards = {{
    {QT_TRANSLATE_NOOP("QObject", "无PCA9548"), 0xFF},
    {QT_TRANSLATE_NOOP("QObject", "转接板-1(PCA9548-4)"), 0x10},
    {QT_TRANSLATE_NOOP("QObject", "转接板-2(PCA9548-5)"), 0x20},
    {QT_TRANSLATE_NOOP("QObject", "转接板-3(PCA9548-6)"), 0x40},
    {QT_TRANSLATE_NOOP("QObject", "转接板-4(PCA9548-3)"), 0x08},
    {QT_TRANSLATE_NOOP("QObject", "转接板-5(PCA9548-2)"), 0x04},
    {"PCA9548-0", 0x01},
    {"PCA9548-1", 0x02},
    {"PCA9548-2", 0x04},
    {"PCA9548-3", 0x08},
    {"PCA9548-4", 0x10},
    {"PCA9548-5", 0x20},
    {"PCA9548-6", 0x40},
    {"PCA9548-7", 0x80},
}};

QStringList adapterBoardNames(const char *context)
{
    QStringList names;
    for (const AdapterBoard &board : adapterBoards)
        names.append(QCoreApplication::translate(context, board.text));
    return names;
}

uint8_t adapterBoardMask(int index)
{
    if (index < 0 || index >= static_cast<int>(adapterBoards.size()))
        return 0;
    return adapterBoards[static_cast<size_t>(index)].mask;
}
