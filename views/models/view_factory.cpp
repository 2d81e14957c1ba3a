#include "views/models/view_factory.h"

#include "views/models/finger_forms.h"

#include <QPointer>

#include <algorithm>
#include <memory>

namespace {

struct Substitute
{
    uint8_t programId;
    uint8_t view;
};

/// Program ids that are shown by another model's view. They go before a view of the id's own number.
constexpr Substitute kSubstitutes[] = {{60, 20},  {61, 21},  {62, 23},   {63, 24},  {64, 50},  {65, 50},
                                       {66, 50},  {75, 50},  {108, 50},  {68, 67},  {80, 67},  {82, 81},
                                       {84, 83},  {87, 86},  {88, 85},   {91, 64},  {92, 64},  {93, 64},
                                       {94, 64},  {97, 76},  {99, 52},   {100, 54}, {104, 54}, {105, 54},
                                       {106, 54}, {107, 54}, {103, 102}, {113, 19}};

uint8_t viewNumber(uint8_t programId)
{
    const auto *found =
        std::find_if(std::begin(kSubstitutes), std::end(kSubstitutes),
                     [programId](const Substitute &each) { return each.programId == programId; });
    return found == std::end(kSubstitutes) ? programId : found->view;
}

} // namespace

class_finger *makeView(uint8_t prg, QWidget *parent)
{
    const uint8_t number = viewNumber(prg);
    const auto *maker = std::find_if(std::begin(kViewMakers), std::end(kViewMakers),
                                     [number](const ViewMaker &each) { return each.number == number; });
    if (maker == std::end(kViewMakers)) {
        qDebug("not found finger:%d", prg);
        return nullptr;
    }
    const bool hasParent = parent != nullptr;
    const QPointer<QWidget> guard(parent);
    // Without a parent until it is built: the boxes of the audit run the event loop, and a parent that dies
    // there would take the half-built view with it.
    std::unique_ptr<ModelView> view(maker->make());
    if (hasParent && !guard)
        return nullptr;
    view->setParent(guard);
    return view.release();
}
