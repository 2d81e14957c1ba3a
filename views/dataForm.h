#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class dataForm;
}

/// One row of a channel list: caption, value, and for a channel a reset button and an enable box.
class dataForm : public QWidget
{
    Q_OBJECT

public:
    /// `noButtons` other than 0 leaves caption and value only.
    dataForm(unsigned char idx, QString caption, unsigned char noButtons, QWidget *parent = nullptr);
    ~dataForm() override;

    /// Text of the value label. A text that it shows already costs nothing.
    void setValue(const QString &text);
    /// Red for a touched channel, black otherwise. A colour that was set already costs nothing; before the
    /// first call the label is as its form has it, black on white in every desktop theme.
    void setTouched(bool touched);

Q_SIGNALS:
    void si_reset(unsigned char idx);
    void si_en(unsigned char idx, bool on);

private:
    enum class ValueColour { OfForm, Touched, Untouched };

    std::unique_ptr<Ui::dataForm> ui;
    unsigned char idx;
    ValueColour m_colour = ValueColour::OfForm;
};
