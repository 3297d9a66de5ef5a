#pragma once

#include <QString>

namespace velmora {

/// Answers of an alert panel.
enum AlertAnswer : int { AlertAlternate = 0, AlertDefault = 1 };

/// Shows a message, as plain text, over the middle of the window in use and returns the answer once
/// the user has given it. All other windows are blocked until then. An alternate button with an
/// empty label is not drawn. Without a title, the window carries the application's name. Dismissing
/// the panel takes the alternate button if there is one. The box's objectName is "alertPanel". Main
/// thread.
int runAlertPanel(const QString& title, const QString& message, const QString& defaultButton,
                  const QString& alternateButton);

/// What an alert tells besides its message.
struct AlertMore {
    QString sentence; ///< under the message; may be empty
    QString details;  ///< shown when the user asks for them by "Details…"; may be empty
};

/// An alert without a title and with an OK button. The details are shown in a window of their own,
/// from where they can be copied; the alert stays.
void runAlertPanelWith(const AlertMore& more, const QString& message);

} // namespace velmora
