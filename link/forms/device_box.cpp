#include "link/forms/device_box.h"

#include "link/pca9548.h"

#include <QComboBox>

namespace {

QStringList itemTexts(const QComboBox *box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts.append(box->itemText(i));
    return texts;
}

} // namespace

void refillDeviceBox(QComboBox *box, const QStringList &texts)
{
    if (itemTexts(box) == texts)
        return;
    box->clear();
    box->addItems(texts);
}

void fillAdapterBoardBox(QComboBox *box, const char *context)
{
    box->clear();
    box->addItems(adapterBoardNames(context));
}
