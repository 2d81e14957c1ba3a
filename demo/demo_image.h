#pragma once

/// Puts the firmware image of the demonstration where its settings are, and offers it on the update tab
/// unless the user has chosen another one before. Call it before the window is made.
void offerDemoImage();
