#pragma once

#include "OutputSettingsPanel.h"

#include <QString>

#include <functional>

namespace velmora {

/// The output settings of a join. Whether files may be joined directly is for the can-join callback
/// to say. Main thread.
class joinerWinController : public OutputSettingsPanel {
public:
    /// Whether all listed files are of one kind; gives the extension of a direct join by
    /// setFileExtension() before it returns.
    using CanJoin = std::function<bool()>;

    /// The window stays above `owner`, which outlives the panel; null: it belongs to no other.
    explicit joinerWinController(QWidget* owner = nullptr);

    /// Sets the callback; without one, direct joins are refused.
    void setFileCanJoinCB(CanJoin canJoin);
    /// The same for an operation of `handler`, which outlives the panel.
    template <class Handler> void setFileCanJoinCB(Handler* handler, bool (Handler::*operation)()) {
        setFileCanJoinCB([handler, operation] { return (handler->*operation)(); });
    }
    void setFileExtension(const QString& extension);

    /// The default name, which reaches the name field only before the window is loaded.
    void setJoinerOutputFilename(const QString& name);
    QString JoinerOutputFilename() const { return mFilename; }

    /// What the start button does: starts the join, or says why not.
    void mButStartJoin();

protected:
    OutputSettingsForm* setupWindow(PanelWindow& window) override;
    QString expectedExtension() const override;
    QString exactSentence() const override;

private:
    bool fileCanJoin() const;

    CanJoin mHandler;
};

} // namespace velmora
