#pragma once

#include <cstddef>

/// What is drawn behind the gauges.
enum class Outline {
    Fingertip,
    WideFingertip,
    NailedFingertip,
    FingerPad,
    Palm,
    Gripper,
    MassageHead,
    Array,
    WideArray
};

/// A circle on a drawing. Lengths of a drawing are in pixels of the picture at its smallest size.
struct Spot
{
    double x;
    double y;
    double diameter;
    /// Of a gauge that carries numbers. They stand at its left edge, which may lie beyond the outline; as
    /// much stays free on the right.
    double width = 0;
};

/// A fixed arrangement of spots.
struct Spots
{
    const Spot *first = nullptr;
    int count = 0;

    constexpr Spots() = default;
    template<std::size_t Size>
    constexpr Spots(const Spot (&spots)[Size])
        : first(spots)
        , count(static_cast<int>(Size))
    {}
    const Spot *begin() const { return first; }
    const Spot *end() const { return first + count; }
};

/// The tile grid of an array view and its place on the drawing.
struct TileLayout
{
    int rows;
    int columns;
    bool quarterTurn; ///< the tiles stand turned a quarter clockwise on the screen; for square grids
    double x;
    double y;
    double width;
    double height;
};

/// Where a sensor's regions lie: gauges stand for three-dimensional force blocks, discs for force channels,
/// tiles for the channels of an array.
struct Drawing
{
    Outline outline;
    Spots gauges; ///< none leaves the whole form empty
    Spots discs;
    const TileLayout *tiles = nullptr;
};

extern const Drawing kTip;          ///< fingertip, one region
extern const Drawing kTipWith5;     ///< ... with discs around it
extern const Drawing kTipWith10;    ///< ...
extern const Drawing kTipWith12;    ///< ... room for numbers within the ring
extern const Drawing kTipWith13;    ///< ... discs with numbers, on a page of their own
extern const Drawing kTipOf15;      ///< fingertip of fifteen regions
extern const Drawing kNailedTip;    ///< fingertip with a nail, no regions
extern const Drawing kPad;          ///< finger, one region
extern const Drawing kPadOf2;       ///< ...
extern const Drawing kPadOf3;       ///< ...
extern const Drawing kPadOf4;       ///< ...
extern const Drawing kPadOf3With12; ///< three regions with four discs each
extern const Drawing kPalm;         ///< palm, three regions and 31 discs
extern const Drawing kGripper;      ///< two-finger gripper, a region a jaw
extern const Drawing kMassageHead;  ///< massage head, one region
extern const Drawing kEmptyHead;    ///< massage head, no regions
extern const Drawing kArray3x3;     ///< tile arrays
extern const Drawing kArray3x4;     ///< ...
extern const Drawing kArray5x5;     ///< ... turned a quarter
extern const Drawing kArray1x3;     ///< ... the gauge below the tiles
