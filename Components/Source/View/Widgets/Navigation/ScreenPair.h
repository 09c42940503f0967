#ifndef SCREENPAIR_H
#define SCREENPAIR_H

#include "ScreenKey.h"

class QPushButton;

/// One entry of the navigation bar's screen map: the entry's key and its button.
struct ScreenPair
{
    ScreenKey key;
    QPushButton* button = nullptr;
};

#endif
