#include "tests/exploration/chooser.h"

int Chooser::choose(int count, int rank)
{
    if (m_isPruned)
        return 0;
    if (m_position == m_path.size()) {
        open(1, count, rank);
        m_path += '\0';
    }
    return m_path[m_position++];
}

void Chooser::open(int first, int count, int rank)
{
    for (int choice = count - 1; choice >= first; --choice)
        m_open[rank].push_back(m_path + static_cast<char>(choice));
}

void Chooser::postpone(int count, int rank)
{
    open(0, count, rank);
    prune();
}

bool Chooser::startNext()
{
    if (m_open.empty())
        return false;
    std::vector<Path> &lowest = m_open.begin()->second;
    m_path = lowest.back();
    m_position = 0;
    m_isPruned = false;
    lowest.pop_back();
    if (lowest.empty())
        m_open.erase(m_open.begin());
    return true;
}
