#pragma once
// The project result computed in a thread of its own, so that the window that asked for it
// stays in use: its progress, its end and its result come back as signals in the window's
// thread. A run that is asked to stop ends at the computation's next step; a run started
// anew replaces the one before it, whose result is then dropped. The object waits for its
// threads when it goes.

#include "ProjectOverview.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QThread;

namespace qi {

class Database;
struct Settings;

/// Computes a project result with the given options (in the run's thread).
using ProjectResultSource = std::function<std::unique_ptr<Database>(const OverviewOptions&)>;

/// The project result of `settings` as computeProjectResult makes it with Quarn's components
/// of its own (the settings are copied).
ProjectResultSource projectResultOf(const Settings& settings);

class ProjectResultRun : public QObject {
    Q_OBJECT
public:
    explicit ProjectResultRun(ProjectResultSource source, QObject* parent = nullptr);
    ~ProjectResultRun() override;

    /// Replaces what computes the result, from the next start on.
    void setSource(ProjectResultSource source) { source_ = std::move(source); }
    /// Starts a computation (a fresh evaluation of stale orders when `fresh`); one still
    /// running is asked to stop and its result is dropped.
    void start(bool fresh);
    /// Asks the running computation to stop; `cancelled` follows.
    void cancel();
    /// True from start until finished, failed or cancelled.
    bool running() const { return running_; }
    /// Waits until every thread of this object has ended (their signals may still be queued).
    void wait();

signals:
    /// A step of the computation begins: `done` of `total` steps, and what comes next.
    void progressed(int done, int total, const QString& step);
    /// The result is there (`fresh` as asked in start).
    void finished(std::shared_ptr<qi::Database> result, bool fresh);
    /// The computation failed; `text` says why (German).
    void failed(const QString& text);
    /// The computation stopped as it was asked to.
    void cancelled();

private:
    struct Job {
        QThread* thread = nullptr;
        std::shared_ptr<std::atomic<bool>> stop;
    };
    /// Forgets the threads that have ended.
    void reap();

    ProjectResultSource source_;
    std::vector<Job> jobs_;
    unsigned generation_ = 0;
    bool running_ = false;
};

} // namespace qi
