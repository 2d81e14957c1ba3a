#include "views/models/view_layout.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr ArrowRule kPlain = {ArrowRule::Gate::Tangential, true, 0};
constexpr ArrowRule kTurned90 = {ArrowRule::Gate::Tangential, true, 90};
constexpr ArrowRule kTurned270 = {ArrowRule::Gate::Tangential, true, 270};
constexpr ArrowRule kByNormal = {ArrowRule::Gate::Normal, false, 0};

constexpr auto kNoText = GaugeText::None;
constexpr auto kEmptyText = GaugeText::AlwaysEmpty;
constexpr auto kTextAsked = GaugeText::WhenAsked;

constexpr unsigned kTwoPages = kForcePage | kProximityPage;
constexpr unsigned kThreePages = kGaugePage | kForcePage | kProximityPage;
constexpr unsigned kAllPages = kThreePages | kDataPage;
constexpr unsigned kGaugeAndProximity = kGaugePage | kProximityPage;

/// One row a view: number, bar maximum, {deep red, middle red}, arrow, numbers, drawing, pages, traits. The
/// numbers stand in CMakeLists.txt too, from which the build makes the class of a row that has no header of
/// its own.
// clang-format off
constexpr ViewLayout kViewLayouts[] = {
    {  2, 300000, {139, 140}, kPlain,     kNoText,    &kTip,          kAllPages,
     kBoardPicture | kTellsMissingGauge},
    { 17, 300000, {139, 140}, kTurned90,  kEmptyText, &kGripper,      kThreePages,
     kFullAtScale | kBoardPicture | kTellsMissingGauge},
    { 18, 300000, {139, 140}, kPlain,     kEmptyText, &kGripper,      kGaugeAndProximity, kBoardPicture},
    { 19, 300000, {139, 140}, kPlain,     kTextAsked, &kTip,          kThreePages,
     kFullAtScale | kTellsMissingGauge},
    { 20, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf2,       kThreePages,        kBoardPicture},
    { 21, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf3,       kThreePages,        kBoardPicture},
    { 22, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf3,       kThreePages,        kBoardPicture},
    { 23, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf3,       kThreePages,        kBoardPicture},
    { 24, 300000, {139, 140}, kPlain,     kTextAsked, &kPadOf2,       kTwoPages,          kNoTraits},
    { 25, 300000, {139, 140}, kPlain,     kEmptyText, &kNailedTip,    kNoPages,           kNoTraits},
    { 26, 300000, {139, 140}, kPlain,     kEmptyText, &kNailedTip,    kNoPages,           kNoTraits},
    { 27, 300000, {139, 140}, kPlain,     kEmptyText, &kTip,          kNoPages,           kNoTraits},
    { 28, 300000, {139, 140}, kPlain,     kEmptyText, &kTip,          kNoPages,           kNoTraits},
    { 29, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf2,       kProximityPage,     kNoTraits},
    { 30, 300000, {139, 140}, kPlain,     kEmptyText, &kTip,          kNoPages,           kNoTraits},
    { 31, 300000, {139, 140}, kPlain,     kEmptyText, &kMassageHead,  kNoPages,           kNoTraits},
    { 34, 340000, {139, 140}, kPlain,     kEmptyText, &kEmptyHead,    kNoPages,           kNoTraits},
    { 37, 370000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 38, 380000, {139, 140}, kPlain,     kEmptyText, &kPadOf2,       kTwoPages,          kNoTraits},
    { 39, 390000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 40, 400000, {140, 140}, kPlain,     kEmptyText, &kTip,          kTwoPages,          kNoTraits},
    { 41, 410000, {141, 141}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 42, 450000, {145, 145}, kPlain,     kEmptyText, &kPalm,         kTwoPages,          kNoTraits},
    { 43, 430000, {143, 143}, kPlain,     kEmptyText, &kGripper,      kThreePages,        kNoTraits},
    { 44, 450000, {145, 145}, kPlain,     kTextAsked, &kTipWith13,    kThreePages,        kDiscTexts},
    { 45, 450000, {145, 145}, kPlain,     kEmptyText, &kTipOf15,      kThreePages,        kNoTraits},
    { 46, 300000, {139, 140}, kPlain,     kTextAsked, &kPadOf2,       kTwoPages,          kNoTraits},
    { 47, 370000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 48, 370000, {139, 140}, kPlain,     kEmptyText, &kPadOf2,       kTwoPages,          kNoTraits},
    { 49, 370000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 50, 370000, {139, 140}, kPlain,     kTextAsked, &kPad,          kTwoPages,          kNoTraits},
    { 52, 370000, {139, 140}, kPlain,     kTextAsked, &kPadOf2,       kTwoPages,          kNoTraits},
    { 54, 370000, {139, 140}, kPlain,     kTextAsked, &kPad,          kTwoPages,          kNoTraits},
    { 55, 370000, {139, 140}, kTurned270, kTextAsked, &kArray5x5,     kThreePages,        kNoTraits},
    { 56, 370000, {139, 140}, kTurned270, kTextAsked, &kArray5x5,     kThreePages,        kNoTraits},
    { 57, 370000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 58, 370000, {139, 140}, kPlain,     kEmptyText, &kPad,          kTwoPages,          kNoTraits},
    { 59, 370000, {139, 140}, kPlain,     kTextAsked, &kPadOf4,       kTwoPages,          kNoTraits},
    { 64, 370000, {139, 140}, kPlain,     kNoText,    &kPad,          kTwoPages,          kNoTraits},
    { 67, 300000, {139, 140}, kPlain,     kEmptyText, &kPadOf2,       kTwoPages,          kNoTraits},
    { 69, 410000, {141, 141}, kPlain,     kEmptyText, &kPad,          kThreePages,        kNoTraits},
    { 70, 300000, {139, 140}, kPlain,     kNoText,    &kPadOf2,       kTwoPages,          kNoTraits},
    { 76, 450000, {145, 145}, kPlain,     kEmptyText, &kPadOf3With12, kTwoPages,          kNoTraits},
    { 81, 370000, {139, 140}, kPlain,     kNoText,    &kArray3x3,     kThreePages,        kNoTraits},
    { 83, 450000, {145, 145}, kByNormal,  kEmptyText, &kTipWith5,     kNoPages,           kNoTraits},
    { 85, 450000, {145, 145}, kByNormal,  kEmptyText, &kTipWith10,    kNoPages,           kNoTraits},
    { 86, 450000, {145, 145}, kByNormal,  kEmptyText, &kTipWith10,    kNoPages,           kNoTraits},
    { 95, 370000, {139, 140}, kPlain,     kNoText,    &kPad,          kTwoPages,          kNoTraits},
    { 96, 370000, {139, 140}, kPlain,     kTextAsked, &kArray3x4,     kThreePages,        kNoTraits},
    { 98, 450000, {145, 145}, kByNormal,  kNoText,    &kPad,          kProximityPage,     kNoTraits},
    {102, 370000, {139, 140}, kTurned270, kTextAsked, &kArray1x3,     kProximityPage,     kNoTraits},
    {110, 370000, {139, 140}, kPlain,     kTextAsked, &kTipWith12,    kNoPages,           kNoTraits},
    {111, 370000, {139, 140}, kPlain,     kTextAsked, &kTipWith12,    kNoPages,           kNoTraits},
};
// clang-format on

constexpr bool boardPicturesHaveTheirIndex()
{
    for (const ViewLayout &each : kViewLayouts) {
        const bool onePageAtMost = (each.pages & (each.pages - 1)) == 0;
        if ((each.traits & kBoardPicture) != 0 && onePageAtMost)
            return false;
    }
    return true;
}
static_assert(boardPicturesHaveTheirIndex(), "a board picture stands behind two pages at least");

/// Outside the table, so that no program id finds it.
constexpr ViewLayout kSkeleton = {
    0xFF,  450000,   {145, 145}, {ArrowRule::Gate::Normal, true, 0}, GaugeText::None,
    &kPad, kNoPages, kNoTraits};

} // namespace

const ViewLayout *findViewLayout(uint8_t number)
{
    const auto *row = std::find_if(std::begin(kViewLayouts), std::end(kViewLayouts),
                                   [number](const ViewLayout &each) { return each.number == number; });
    return row == std::end(kViewLayouts) ? nullptr : row;
}

const ViewLayout &skeletonLayout()
{
    return kSkeleton;
}
