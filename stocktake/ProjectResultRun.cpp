#include "ProjectResultRun.h"

#include "Database.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <exception>

namespace qi {

ProjectResultSource projectResultOf(const Settings& settings)
{
    Settings own = settings;
    // The overview links a report database of its own; the program's private copy stays with the program.
    own.privateReportDatabase.reset();
    return [own](const OverviewOptions& options) { return computeProjectResult(own, options); };
}

ProjectResultRun::ProjectResultRun(ProjectResultSource source, QObject* parent)
    : QObject(parent), source_(std::move(source))
{
}

ProjectResultRun::~ProjectResultRun()
{
    for (Job& job : jobs_)
        *job.stop = true;
    for (Job& job : jobs_) {
        job.thread->wait();
        delete job.thread;
    }
}

void ProjectResultRun::reap()
{
    std::erase_if(jobs_, [](Job& job) {
        if (!job.thread->isFinished())
            return false;
        delete job.thread;
        return true;
    });
}

void ProjectResultRun::cancel()
{
    for (Job& job : jobs_)
        *job.stop = true;
}

void ProjectResultRun::wait()
{
    for (Job& job : jobs_)
        job.thread->wait();
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    reap();
}

void ProjectResultRun::start(bool fresh)
{
    cancel();
    reap();
    const unsigned generation = ++generation_;
    running_ = true;
    auto stop = std::make_shared<std::atomic<bool>>(false);
    // What the thread sends is handled here, in this object's thread; a run that was replaced says nothing.
    const auto deliver = [this, generation](auto handle) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, handle] {
                if (generation != generation_)
                    return;
                handle();
            },
            Qt::QueuedConnection);
    };
    const auto ended = [this, deliver](auto emitEnd) {
        deliver([this, emitEnd] {
            running_ = false;
            emitEnd();
        });
    };
    QThread* thread = QThread::create([source = source_, stop, fresh, deliver, ended, this] {
        OverviewOptions options;
        options.freshEvaluation = fresh;
        options.progress = [&](int done, int total, const std::string& step) {
            if (*stop)
                return false;
            deliver([this, done, total, text = QString::fromStdString(step)] { emit progressed(done, total, text); });
            return true;
        };
        try {
            std::shared_ptr<Database> result = source(options);
            if (*stop)
                ended([this] { emit cancelled(); });
            else
                ended([this, result, fresh] { emit finished(result, fresh); });
        } catch (const OverviewCancelled&) {
            ended([this] { emit cancelled(); });
        } catch (const std::exception& e) {
            ended([this, text = QString::fromStdString(e.what())] { emit failed(text); });
        }
    });
    jobs_.push_back({thread, stop});
    thread->start();
}

} // namespace qi
