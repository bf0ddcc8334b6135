/// \file
/// How long frames take while a program loads.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <array>
#include <vector>

/// What goes on besides the drawing.
enum class Phase
{
    Idle,
    Preparing,
    Uploading,
    FirstDraw ///< of a model: what a driver has put off until then
};

/// A frame lasts from the begin of one to the begin of the next: what a user sees of it, whoever
/// takes the time.
class FrameTimes
{
public:
    /// Ends the frame before, if there is one.
    void beginFrame();

    /// Says what the current frame belongs to; Idle unless it is said.
    void setPhase(Phase phase) { _phase = phase; }

    /// Notes what one upload, of a buffer or of an image, took within the current frame.
    void addUpload(double milliseconds) { _uploads.push_back(milliseconds); }

    /// A line for each phase, and one for the uploads.
    QString report() const;

    /// Forgets everything; the current frame does not count either.
    void clear() { *this = FrameTimes(); }

private:
    QElapsedTimer _frame;
    Phase _phase = Phase::Idle;
    std::array<std::vector<double>, 4> _milliseconds; // by phase
    std::vector<double> _uploads;
};
