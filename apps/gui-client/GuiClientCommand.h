#ifndef GUICLIENTCOMMAND_H
#define GUICLIENTCOMMAND_H

#include "GuiClientOptions.h"

#include <GUIManager.hh>

#include <iosfwd>

/**
 * One command of tz-gui-client, carried out on the GUI manager: the call, its answer on
 * standard output and the exit status the answer gives.
 */
class GuiClientCommand
{
public:
    explicit GuiClientCommand(const GuiClientOptions& options);

    /// Calls \a manager and writes the answer to \a out, problems to \a err; returns the
    /// exit status. CORBA exceptions of the call reach the caller.
    int run(Lumaro::gui::GUIManager_ptr manager, std::ostream& out, std::ostream& err) const;

private:
    const GuiClientOptions& m_options;
};

#endif
