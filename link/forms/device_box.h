#pragma once

#include <QStringList>

class QComboBox;

/// Makes the texts the items of the box. A box that has just these items is not touched, so that a list that
/// comes again and again never disturbs what the user has chosen.
void refillDeviceBox(QComboBox *box, const QStringList &texts);

/// Fills the box with the adapter boards, translated in the given context (see link/pca9548.h). Nothing is
/// selected by it beyond what the box does by itself.
void fillAdapterBoardBox(QComboBox *box, const char *context);
