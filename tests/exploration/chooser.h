#pragma once

#include <map>
#include <string>
#include <vector>

/// Takes a program through everything that it can do: each run asks what happens next, and no two runs get
/// the same answers. Ways of a low rank are gone before those of a higher one.
class Chooser
{
public:
    Chooser() { m_open[0].push_back(std::string()); }

    /// One of 0 to \a count - 1; the others are for later runs.
    int choose(int count, int rank);
    /// Begins another run; false when there is none that has not been made.
    bool startNext();
    /// Whether this run still does what one before it did.
    bool isRepeating() const { return m_position < m_path.size(); }
    /// Ends this run before a choice of \a count, which later ones take.
    void postpone(int count, int rank);
    /// What follows is known from another run: the rest of this one goes any one way, and counts for nothing.
    void prune() { m_isPruned = true; }
    bool isPruned() const { return m_isPruned; }

private:
    typedef std::string Path; // a choice each byte

    void open(int first, int count, int rank);

    std::map<int, std::vector<Path>> m_open; // by rank
    Path m_path;
    std::string::size_type m_position = 0;
    bool m_isPruned = false;
};
