#pragma once

#include "protocol/command.h"

#include <QByteArray>

#include <functional>
#include <map>

/// What becomes of an answer, by the command of its request.
///
/// The table comes with the commands whose answer says no more than whether they were carried out; whoever
/// shows values adds a row for each.
class AnswerTable
{
public:
    using Handler = std::function<void(const QByteArray &req, const QByteArray &rsp)>;

    AnswerTable();

    /// The handler may delete the table.
    void add(Command command, Handler handler);
    /// Logs both frames and calls the handler of the request's command. May open a box, which runs the event
    /// loop.
    void take(const QByteArray &req, const QByteArray &rsp) const;

private:
    std::map<Command, Handler> m_handlers;
};

/// Logs the status of an acknowledgement; a box tells the user of one that is not 0. A short one has no
/// status and counts as good.
void acknowledge(const QByteArray &req, const QByteArray &rsp);
