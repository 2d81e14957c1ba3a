#pragma once

#include "views/models/ModelView.h"

/// The family's skeleton: a gauge whose arrow follows the normal force, and bars. No program id leads to it;
/// it is what a new member of another kind starts from.
class fingerForm_null : public ModelView
{
    Q_OBJECT

public:
    using ModelView::ModelView;
};
