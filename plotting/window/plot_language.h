#pragma once

class QTranslator;

/// Has the window speak Chinese for as long as the table lives. Windows made before keep their texts. False
/// if the table cannot be read.
bool speakChinese(QTranslator &table);
