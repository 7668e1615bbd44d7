#pragma once

#include "desk/slave/slave_thread.h"

#include <gtest/gtest.h>

/// A slave that runs from the beginning; one that cannot fails the test.
struct RunningSlave : SlaveThread {
    explicit RunningSlave(const SlaveOptions &slaveOptions = SlaveOptions()) : SlaveThread(slaveOptions)
    {
        EXPECT_TRUE(start()) << errorString().toStdString();
    }
};
