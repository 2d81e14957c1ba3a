#pragma once

class WindowDriver;
struct TourStop;

// What the tour does beside walking over the panels. Each notes with the driver what fails and prints what it
// found.

/// On the monitor tab, connected: the samples of the panel in front go to the plotter, whose picture is kept.
/// Does nothing where the plotter was not built.
void plotLive(WindowDriver &driver);

/// On the update tab: the firmware of a sensor behind that interface.
void updateOver(WindowDriver &driver, const TourStop &stop);

/// On the address tab, over the CH341: a sensor moves to another address and back.
void moveSensorAndBack(WindowDriver &driver, const TourStop &stop);

/// On the debug tab, over the CH341: channel by channel, with a sum on every request and answer.
void scanMultiplexer(WindowDriver &driver, const TourStop &stop);
