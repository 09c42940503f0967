#include "GuiClientCommand.h"

#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>

namespace {

using Command = GuiClientOptions::Command;

int answer(long code, std::ostream& out)
{
    out << code << '\n';
    return GuiClientOptions::exitStatusFor(code);
}

} // namespace

GuiClientCommand::GuiClientCommand(const GuiClientOptions& options)
    : m_options(options)
{
}

int GuiClientCommand::run(Lumaro::gui::GUIManager_ptr manager, std::ostream& out, std::ostream& err) const
{
    const std::vector<std::string>& operand = m_options.operands;
    const bool wait = m_options.wait;
    switch (m_options.command) {
    case Command::Alert:
        return answer(manager->DisplayAlert(operand[0].c_str()), out);
    case Command::Dialog:
        if (m_options.parameters.empty())
            return answer(manager->DisplayDialog(operand[0].c_str(), operand[1].c_str(), operand[2].c_str(), wait),
                          out);
        else {
            Lumaro::gui::StringSeq parameters;
            parameters.length(CORBA::ULong(m_options.parameters.size()));
            for (CORBA::ULong i = 0; i < parameters.length(); ++i)
                parameters[i] = m_options.parameters[i].c_str();
            return answer(manager->DisplayDialogWithParams(operand[0].c_str(), operand[1].c_str(), parameters,
                                                           operand[2].c_str(), wait),
                          out);
        }
    case Command::Image:
        return answer(manager->DisplayImage(operand[0].c_str(), operand[1].c_str(), operand[2].c_str(),
                                            operand[3].c_str(), wait),
                      out);
    case Command::DataEntry: {
        CORBA::String_var data;
        const long code = manager->DisplayDataEntry(operand[0].c_str(), operand[1].c_str(), operand[2].c_str(), wait,
                                                    data.out());
        const int status = answer(code, out);
        out << data.in() << '\n';
        return status;
    }
    case Command::FileSelect: {
        CORBA::String_var path;
        CORBA::String_var filename;
        const long code = manager->DisplayFileSelectDialog(operand[0].c_str(), operand[1].c_str(), path.out(),
                                                           filename.out());
        const int status = answer(code, out);
        out << path.in() << '\n' << filename.in() << '\n';
        return status;
    }
    case Command::CloseDialog:
        manager->CloseDialog(operand[0].c_str());
        return 0;
    case Command::CloseAll:
        manager->CloseAllDialogs();
        return 0;
    case Command::IsActive: {
        const bool active = manager->IsDialogActive(operand[0].c_str());
        out << (active ? "true" : "false") << '\n';
        return active ? 0 : 1;
    }
    case Command::OpenDcs:
        manager->OpenDCS();
        return 0;
    case Command::Screens: {
        Lumaro::gui::StringSeq_var screens = manager->GetScreenList();
        for (CORBA::ULong i = 0; i < screens->length(); ++i)
            out << screens[i].in() << '\n';
        return 0;
    }
    case Command::Show:
        manager->ShowScreen(operand[0].c_str());
        return 0;
    case Command::Hide:
        manager->HideScreen(operand[0].c_str());
        return 0;
    case Command::Move:
        manager->MoveScreen(operand[0].c_str(), CORBA::Long(std::strtol(operand[1].c_str(), nullptr, 10)),
                            CORBA::Long(std::strtol(operand[2].c_str(), nullptr, 10)));
        return 0;
    case Command::Size:
        manager->ChangeSize(operand[0].c_str(), operand[1].c_str());
        return 0;
    case Command::SaveState: {
        CORBA::String_var layout = manager->SaveState();
        std::ofstream file(operand[0], std::ios::binary | std::ios::trunc);
        file << layout.in();
        file.close();
        if (!file) {
            err << "tz-gui-client: cannot write \"" << operand[0] << "\"\n";
            return GuiClientOptions::UsageError;
        }
        return 0;
    }
    case Command::RestoreState: {
        std::ifstream file(operand[0], std::ios::binary);
        if (!file) {
            err << "tz-gui-client: cannot read \"" << operand[0] << "\"\n";
            return GuiClientOptions::UsageError;
        }
        std::ostringstream layout;
        layout << file.rdbuf();
        manager->RestoreState(layout.str().c_str());
        return 0;
    }
    case Command::MenuBar:
        manager->SetMenuBarVisible(operand[0] == "on");
        return 0;
    case Command::None:
        break;
    }
    return GuiClientOptions::UsageError;
}
