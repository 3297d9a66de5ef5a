#pragma once

#include "JoinerTableModel.h"
#include "SourceFactsReader.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

class QWidget;

namespace velmora {

class JoinerTable;
class joinerWinController;

/// The joiner's rows: adding and removing them, what the table shows of them, whether they can be
/// joined directly, and the way into the panel that starts a join. New rows go to the shared
/// `joinerFileList`; all else is about the list on show, `sharedFileList`. Main thread; adding
/// blocks.
class JoinerList {
public:
    /// The list is shown by `table`. The panel will stay above `owner`. Both must outlive this.
    JoinerList(JoinerTable& table, QWidget& owner);
    ~JoinerList();
    JoinerList(const JoinerList&) = delete;
    JoinerList& operator=(const JoinerList&) = delete;

    /// Makes the panel, unless there is one. Without it nothing can be joined.
    void createPanel();

    /// Shows the list as it is now. The selected place stays selected, as long as there is a row.
    void reload();

    // What the table asks.
    int rowCount() const;
    /// Invalid when there is no such row.
    QVariant cell(const QString& column, int row) const;

    // Filling and thinning.
    /// False, with an alert, when the list takes no more files; an invalid file only alerts. The
    /// callers reload.
    bool add(const QString& path);
    void addChosenFiles(const QStringList& files);
    /// Adds the first of the files; whether there was one.
    bool addDroppedFiles(const QStringList& files);
    void removeSelected();

    // Joining.
    /// Whether all rows have one format and one size. Gives the panel the extension of the output.
    bool canJoin();
    /// Opens the panel modally, or says why not.
    void merge();
    void closePanel();

private:
    std::vector<SourceFacts> knownFacts() const;
    void showTrouble();

    JoinerTable& table_;
    QWidget& owner_;
    JoinerTableModel model_;
    SourceFactsReader facts_;
    std::unique_ptr<joinerWinController> mJointerWincontroller;
};

} // namespace velmora
