#pragma once

#include <QString>

namespace velmora {

/// The help page that comes with the program.
class HelpPage {
public:
    HelpPage();

    /// Its address in the local file system.
    const QString& address() const { return address_; }
    /// Opens it in the desktop's browser. A page that is not installed is first written to the
    /// user's cache folder, where a browser can read it.
    void open() const;

private:
    QString resource_; ///< where Bundle finds it
    QString address_;
};

} // namespace velmora
