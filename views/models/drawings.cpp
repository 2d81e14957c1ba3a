#include "views/models/drawings.h"

namespace {

constexpr Spot kTipGauge[] = {{60, 66, 62, 212}};
constexpr Spot kTipGaugeInRing[] = {{60, 66, 36}};
constexpr Spot kWideTipGauge[] = {{116, 66, 62, 166}};
constexpr Spot kWideTipGaugeInRing[] = {{116, 66, 46, 130}};

constexpr Spot kTipRing5[] = {{60, 24, 18}, {102, 58, 18}, {86, 104, 18}, {34, 104, 18}, {18, 58, 18}};

constexpr Spot kTipRing10[] = {{60, 24, 15},  {85, 31, 15},  {100, 52, 15}, {100, 78, 15}, {85, 101, 15},
                               {60, 108, 15}, {35, 101, 15}, {20, 78, 15},  {20, 52, 15},  {35, 31, 15}};

constexpr Spot kWideTipRing12[] = {{116, 22, 14}, {161, 28, 14},  {194, 44, 14},  {206, 66, 14},
                                   {194, 88, 14}, {161, 104, 14}, {116, 110, 14}, {71, 104, 14},
                                   {38, 88, 14},  {26, 66, 14},   {38, 44, 14},   {71, 28, 14}};

constexpr Spot kWideTipRows13[] = {
    {116, 20, 17, 66}, {50, 44, 17, 66},   {116, 44, 17, 66}, {182, 44, 17, 66}, {50, 66, 17, 66},
    {116, 66, 17, 66}, {182, 66, 17, 66},  {50, 88, 17, 66},  {116, 88, 17, 66}, {182, 88, 17, 66},
    {50, 110, 17, 66}, {116, 110, 17, 66}, {182, 110, 17, 66}};

constexpr Spot kTipRows15[] = {{49, 21, 19}, {71, 21, 19}, {36, 43, 19},  {60, 43, 19},  {84, 43, 19},
                               {36, 65, 19}, {60, 65, 19}, {84, 65, 19},  {24, 87, 19},  {48, 87, 19},
                               {72, 87, 19}, {96, 87, 19}, {36, 109, 19}, {60, 109, 19}, {84, 109, 19}};

constexpr Spot kPadGauge[] = {{50, 56, 52, 176}};
constexpr Spot kPadGauges2[] = {{50, 44, 52, 176}, {50, 118, 52, 176}};
constexpr Spot kPadGauges3[] = {{50, 34, 44}, {50, 82, 44}, {50, 130, 44}};
constexpr Spot kPadGauges4[] = {{50, 26, 37, 160}, {50, 64, 37, 160}, {50, 102, 37, 160}, {50, 140, 37, 160}};
constexpr Spot kPadGauges3AmongDiscs[] = {{50, 34, 28}, {50, 84, 28}, {50, 134, 28}};
constexpr Spot kPadDiscs12[] = {{26, 25, 14},  {74, 25, 14},  {20, 44, 14},  {80, 44, 14},
                                {20, 75, 14},  {80, 75, 14},  {20, 94, 14},  {80, 94, 14},
                                {20, 125, 14}, {80, 125, 14}, {20, 144, 14}, {80, 144, 14}};

constexpr Spot kPalmGauges[] = {{62, 101, 32}, {104, 101, 32}, {146, 101, 32}};
constexpr Spot kPalmDiscs31[] = {
    {44, 58, 13},   {59, 58, 13},  {74, 58, 13},  {89, 58, 13},   {104, 58, 13},  {119, 58, 13},
    {134, 58, 13},  {149, 58, 13}, {164, 58, 13}, {44, 74, 13},   {59, 74, 13},   {74, 74, 13},
    {89, 74, 13},   {104, 74, 13}, {119, 74, 13}, {134, 74, 13},  {149, 74, 13},  {164, 74, 13},
    {59, 128, 13},  {74, 128, 13}, {89, 128, 13}, {104, 128, 13}, {119, 128, 13}, {134, 128, 13},
    {149, 128, 13}, {66, 144, 13}, {81, 144, 13}, {96, 144, 13},  {112, 144, 13}, {127, 144, 13},
    {142, 144, 13}};

constexpr Spot kJawGauges[] = {{36, 52, 46}, {104, 52, 46}};
constexpr Spot kHeadGauge[] = {{65, 65, 46}};
constexpr Spot kBoardGauge[] = {{130, 63, 68}};
constexpr Spot kWideBoardGauge[] = {{202, 63, 84, 224}};
constexpr Spot kWideBoardGaugeBelow[] = {{202, 87, 62, 166}};

// A tile that carries a number is wider than high, so that the number stands free on the left of the disc.
constexpr TileLayout kTiles3x3 = {3, 3, false, 76, 9, 108, 108};
constexpr TileLayout kTiles3x4 = {3, 4, false, 12, 9, 380, 108};
constexpr TileLayout kTiles5x5 = {5, 5, true, 12, 9, 380, 108};
constexpr TileLayout kTiles1x3 = {1, 3, false, 12, 13, 380, 36};

} // namespace

const Drawing kTip = {Outline::Fingertip, kTipGauge, {}};
const Drawing kTipWith5 = {Outline::Fingertip, kTipGaugeInRing, kTipRing5};
const Drawing kTipWith10 = {Outline::Fingertip, kTipGaugeInRing, kTipRing10};
const Drawing kTipWith12 = {Outline::WideFingertip, kWideTipGaugeInRing, kWideTipRing12};
const Drawing kTipWith13 = {Outline::WideFingertip, kWideTipGauge, kWideTipRows13};
const Drawing kTipOf15 = {Outline::Fingertip, kTipRows15, {}};
const Drawing kNailedTip = {Outline::NailedFingertip, {}, {}};
const Drawing kPad = {Outline::FingerPad, kPadGauge, {}};
const Drawing kPadOf2 = {Outline::FingerPad, kPadGauges2, {}};
const Drawing kPadOf3 = {Outline::FingerPad, kPadGauges3, {}};
const Drawing kPadOf4 = {Outline::FingerPad, kPadGauges4, {}};
const Drawing kPadOf3With12 = {Outline::FingerPad, kPadGauges3AmongDiscs, kPadDiscs12};
const Drawing kPalm = {Outline::Palm, kPalmGauges, kPalmDiscs31};
const Drawing kGripper = {Outline::Gripper, kJawGauges, {}};
const Drawing kMassageHead = {Outline::MassageHead, kHeadGauge, {}};
const Drawing kEmptyHead = {Outline::MassageHead, {}, {}};
const Drawing kArray3x3 = {Outline::Array, kBoardGauge, {}, &kTiles3x3};
const Drawing kArray3x4 = {Outline::WideArray, kWideBoardGauge, {}, &kTiles3x4};
const Drawing kArray5x5 = {Outline::WideArray, kWideBoardGauge, {}, &kTiles5x5};
const Drawing kArray1x3 = {Outline::WideArray, kWideBoardGaugeBelow, {}, &kTiles1x3};
