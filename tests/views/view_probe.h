#pragma once

#include "tests/support/box_answer.h"
#include "views/class_finger.h"
#include "views/class_ydds.h"
#include "views/models/view_factory.h"
#include "views/sensorForm.h"
#include "views/ydds.h"

#include <memory>

/// The view of a program id, or nothing. The box of a view without a catalogue row has to be announced by its
/// number.
class ViewProbe
{
public:
    explicit ViewProbe(int programId, int numberWithoutRow = 0)
    {
        if (numberWithoutRow != 0)
            m_boxes.expect(QStringLiteral("传感器类型错误"),
                           QStringLiteral("未识别传感器类型%1").arg(numberWithoutRow));
        finger = makeView(static_cast<uint8_t>(programId), nullptr);
        widget.reset(dynamic_cast<QWidget *>(finger));
    }

    bool boxesCame() const { return m_boxes.satisfied(); }

    template<typename Kind>
    Kind *find(const char *name, int number) const
    {
        return widget->findChild<Kind *>(QLatin1String(name) + QString::number(number));
    }
    ydds *gauge(int number) const { return find<ydds>("label_", number); }
    ydds *disc(int number) const { return find<ydds>("lbPress_", number); }
    class_ydds *tile(int cell) const { return widget->findChild<sensorForm *>()->yddsList.at(cell); }

    class_finger *finger = nullptr;
    std::unique_ptr<QWidget> widget;

private:
    BoxAnswer m_boxes;
};
