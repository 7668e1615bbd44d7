#pragma once

#include "kit/subject/subject.h"
#include "tests/doubles/model_slave.h"
#include "tests/doubles/project_database.h"

#include <memory>

/// What the kit has to know of the Modbus driver: a command for each reader and writer, a slave, where the
/// driver differs, and the project that it loads.
class ModbusSubject : public kit::Subject
{
public:
    ModbusSubject();

    /// Those of modbusCommands(), in their order.
    kit::Samples samples() const override;
    QByteArray reply(const QByteArray &request) override;
    QByteArray refusal(const QByteArray &request) override;
    std::vector<CommunicatorCommand> refused() const override;
    kit::Differences differences() const override;
    QString prepare() override;
    void cleanUp() override { project.reset(); }

    /// Answers every station.
    ModelSlave slave;

private:
    std::unique_ptr<ProjectDatabase> project;
};
