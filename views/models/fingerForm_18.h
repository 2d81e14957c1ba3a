#pragma once

#include "views/models/ModelView.h"
#include "views/models/view_layout.h"

/// The view made for program id 18: a static picture.
class fingerForm_18 : public ModelView
{
    Q_OBJECT

public:
    explicit fingerForm_18(QWidget *parent = nullptr)
        : ModelView(*findViewLayout(18), parent)
    {}

    void setYdds(unsigned char, float, float, unsigned short) override {}
    void setSProx(unsigned char, unsigned int) override {}
    void setMProx(unsigned char, unsigned int) override {}
};
