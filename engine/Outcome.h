#pragma once

/// What became of a step of the worker.
enum class Outcome {
    Done,
    Failed, ///< nothing came that could be used
    /// The link went away or the worker was stopped meanwhile: what the step was about exists no more.
    Void,
};
