#pragma once

#include <optional>

/// Which part of the time, and of the values, is shown. Times are in milliseconds.
class TrendWindow
{
public:
    struct Range {
        double low;
        double high;
    };

    double begin() const { return m_end - m_span; }
    double end() const { return m_end; }
    double span() const { return m_span; }
    /// Whether the end goes with the time.
    bool isFollowing() const { return m_isFollowing; }
    /// The values that are shown of an axis; nothing: those that there are.
    const std::optional<Range> &values(int axis) const { return m_values[axis != 0 ? 1 : 0]; }

    void setSpan(double span);
    void setFollowing(bool isFollowing) { m_isFollowing = isFollowing; }
    /// Time has passed.
    void follow(double now);
    /// Shows a part, and follows no more.
    void show(double begin, double end);
    void showValues(int axis, const Range &range);
    /// Zooms by a factor, below 1 into it, about a time.
    void zoom(double factor, double about);
    /// Pans by a part of what is shown, below 0 into the past.
    void pan(double part);
    /// All values again, and the time goes on.
    void reset();

    static constexpr double ShortestSpan = 100;
    static constexpr double LongestSpan = 24 * 3600 * 1000.0;

private:
    double m_end = 0;
    double m_span = 60 * 1000;
    bool m_isFollowing = true;
    std::optional<Range> m_values[2];
};
