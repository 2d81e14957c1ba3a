#pragma once

#include <cstdint>

class QWidget;
class class_finger;

/// Builds the view of a program id. An id that has none logs "not found finger:%d" and gives null; the caller
/// logs nothing more. 0xFF is an id like any other here: whoever knows the frame length looks the id up
/// first.
///
/// The view is a QWidget and belongs to `parent`. A view without a catalogue row has a null `widget` and
/// `info`; dynamic_cast<QWidget *> gives the widget of every view.
///
/// A missing row opens a modal box, so events run in here. When `parent` dies in the meantime the view is
/// dropped and null comes back: a caller that is the parent, or belongs to it, guards itself with a QPointer
/// and looks first whether it still lives.
class_finger *makeView(uint8_t prg, QWidget *parent);
