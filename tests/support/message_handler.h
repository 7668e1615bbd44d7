#pragma once

class QString;

/// Takes one message of Qt's debug output.
typedef void (*MessageTaker)(const QString &text);

/// Hands what goes to Qt's debug output to \a taker, until restoreMessages().
void divertMessages(MessageTaker taker);

/// Lets the debug output go where it went before.
void restoreMessages();
