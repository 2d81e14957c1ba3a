#pragma once

#include "views/models/drawings.h"
#include "views/models/force_colours.h"

#include <cstdint>

/// The numbers beside a gauge.
enum class GaugeText {
    None,        ///< the label is left alone
    AlwaysEmpty, ///< emptied at every sample, whatever the panel asks for
    WhenAsked    ///< shown while the panel asks for data
};

/// Which force shows a gauge's arrow, and how its direction is taken.
struct ArrowRule
{
    enum class Gate { Tangential, Normal };
    Gate gate;
    bool limited; ///< directions of 360 and more hide the arrow
    int rotation; ///< degrees added to the direction, modulo 360; 0 passes the direction on as it is
};

/// Pages of a view, in the order in which they stand. Without any the view has no tab widget.
enum ViewPage : unsigned {
    kNoPages = 0,
    kGaugePage = 1,     ///< "三维力"
    kForcePage = 2,     ///< "压力"
    kProximityPage = 4, ///< "接近"
    kDataPage = 8       ///< "数据"
};

enum ViewTrait : unsigned {
    kNoTraits = 0,
    kFullAtScale = 1,       ///< the full scale itself counts as beyond the scale
    kBoardPicture = 2,      ///< has a page with a picture of the sensor board, if there is such a picture
    kTellsMissingGauge = 4, ///< logs a block that has no gauge
    kDiscTexts = 8          ///< the press discs carry their force
};

/// All that is peculiar to one view of the family.
struct ViewLayout
{
    uint8_t number; ///< N of fingerForm_N: the program id whose catalogue row rules the decoding
    int barMaximum; ///< of the proximity bars
    Shades shades;
    ArrowRule arrow;
    GaugeText gaugeText;
    const Drawing *drawing;
    unsigned pages;  ///< of ViewPage
    unsigned traits; ///< of ViewTrait

    bool has(ViewPage page) const { return (pages & page) != 0; }
    bool has(ViewTrait trait) const { return (traits & trait) != 0; }
};

/// The row of a view's own number, or null.
const ViewLayout *findViewLayout(uint8_t number);

/// The row of the family's skeleton, which stands outside the table.
const ViewLayout &skeletonLayout();
