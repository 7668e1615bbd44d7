#pragma once

#include "tests/model/driver_model.h"
#include "tests/stateful/fault.h"
#include "tests/stateful/project_files.h"

#include <deque>

/// A command of the host.
struct Transfer {
    bool isWrite;
    int dataType;
    DriverModel::Address address;
    int count;
    QByteArray data;
};

/// How many items an area of the slave has: few, since every command copies the model.
const int AreaSize = 300;
/// What the channel says of itself.
const char LineText[] = "the line is broken";

/// What a driver must make of commands while the line and its project are at fault.
class WorldModel : public DriverModel
{
public:
    WorldModel();

    Outcome transfer(const Transfer &command);

    /// What happens to the world between two commands.
    /// @{
    void addFaults(const std::vector<Fault> &faults)
    {
        coming.insert(coming.end(), faults.begin(), faults.end());
    }
    void refuseToOpen(int times) { refusals += times; }
    void closeLine() { isConnected = false; }
    void startDriver();
    /// @}

    ProjectFile file;
    int retries;
    bool isConnected;
    int sentCount;

protected:
    bool isSent() override;
    bool isAnswered(bool isException) override;
    bool failAndClose(const std::string &text) override;

private:
    enum class Loading { NotBegun, Tried, Done };

    Outcome attempt(const Transfer &command);
    bool openLine();
    std::string load();

    std::deque<Fault> coming;
    Fault now;
    int refusals;
    Loading loading;
    // What the driver has open of the project, which stays what it was when the file is replaced.
    ProjectFile opened;
};
