// specialeffects: the effects for people, on files and cameras.
#include <exception>
#include <new>
#include <variant>

#include "CommandLine.h"
#include "Errors.h"
#include "Interrupt.h"
#include "Libav.h"
#include "StandardOutput.h"

int main(int argc, char** argv) {
    try {
        host::SetUpSignals();
        host::SetUpLibav();
        std::visit([](const auto& options) { host::Run(options); }, host::ParseCommandLine(argc, argv));
        return 0;
    } catch (const host::ReaderGone&) {
        return 0;
    } catch (const host::UsageError& error) {
        host::PrintError(error.what());
        return host::kExitUsage;
    } catch (const host::Interruption& interruption) {
        host::PrintError(interruption.what());
        return host::InterruptedExitCode();
    } catch (const std::bad_alloc&) {
        host::PrintError("out of memory");
    } catch (const std::exception& error) {
        host::PrintError(error.what());
    }
    return host::kExitFailure;
}
