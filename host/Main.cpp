// specialeffects: the module's effects for people.
#include <exception>
#include <new>
#include <variant>

#include "CommandLine.h"
#include "Errors.h"
#include "Interrupt.h"
#include "StandardOutput.h"

int main(int argc, char** argv) {
    try {
        host::SetUpSignals();
        if (const auto command = host::ParseCommandLine(argc, argv)) {
            std::visit([](const auto& options) { host::Run(options); }, *command);
        }
        return 0;
    } catch (const host::ReaderGone&) {
        return 0;
    } catch (const host::UsageError& error) {
        host::PrintError(error.what());
        return host::kExitUsage;
    } catch (const std::bad_alloc&) {
        host::PrintError("out of memory");
    } catch (const std::exception& error) {
        host::PrintError(error.what());
    }
    return host::kExitFailure;
}
