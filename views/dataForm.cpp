#include "views/dataForm.h"

#include "ui_dataForm.h"

dataForm::dataForm(unsigned char index, QString caption, unsigned char noButtons, QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::dataForm>())
    , idx(index)
{
    ui->setupUi(this);
    ui->lbIdx->setText(caption);
    ui->pbtnReset->setVisible(noButtons == 0);
    ui->chkpbEnable->setVisible(noButtons == 0);
    connect(ui->pbtnReset, &QPushButton::clicked, this, [this] { Q_EMIT si_reset(idx); });
    connect(ui->chkpbEnable, &QCheckBox::stateChanged, this,
            [this](int state) { Q_EMIT si_en(idx, state == Qt::Checked); });
}

dataForm::~dataForm() = default;

void dataForm::setValue(const QString &text)
{
    ui->lbData->setText(text);
}

void dataForm::setTouched(bool touched)
{
    const ValueColour colour = touched ? ValueColour::Touched : ValueColour::Untouched;
    if (colour == m_colour)
        return;
    m_colour = colour;
    ui->lbData->setStyleSheet(QString::asprintf("color: rgb(%d, %d, %d);", touched ? 255 : 0, 0, 0));
}
