#pragma once

/// The whole life of the process: application, translation, main window, event loop. Returns the exit status.
int qMain(int argc, char **argv);
