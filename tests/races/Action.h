#pragma once

#include "MainController.h"
#include "Random.h"
#include "Sources.h"

#include <span>

namespace velmora::test {

/// What a round is played with.
struct Round {
    MainController& controller;
    const Sources& files;
    Random& random;
    /// How long the player looks on before it acts again.
    int pauseMs = 0;
};

/// Something that a user does. Where there is nothing to do it to, nothing happens.
struct Action {
    const char* name;
    int weight; ///< how often, beside the others of its table
    void (*act)(Round&);
};

using Actions = std::span<const Action>;

/// For the main window, with neither panel nor message before it.
Actions mainActions();
/// For a panel of output settings.
Actions panelActions();
Actions editorActions();
Actions progressActions();
Actions filePanelActions();
/// For alerts and other boxes with a message.
Actions messageActions();
/// For menus and open lists.
Actions popUpActions();

} // namespace velmora::test
