#include "Core/Program/Module.h"

#include <gtest/gtest.h>
#include <string>

namespace
{
/** Writes down what happens to it and whether it can find itself by name meanwhile. */
struct FRecordingModule final : IModuleInterface
{
	explicit FRecordingModule(std::string& InEvents) : Events(InEvents) {}
	~FRecordingModule() override { Events += "gone "; }
	void StartupModule() override { Record("start"); }
	void ShutdownModule() override { Record("stop"); }
	void Record(const char* Event)
	{
		Events += Event;
		Events += FModuleManager::Get().GetModule("Recording") == this ? "(found) " : "(not found) ";
	}
	std::string& Events;
};
}

TEST(ModuleManager, ModulesFindThemselvesWhileTheyStartAndStop)
{
	std::string Events;
	FModuleManager& Manager = FModuleManager::Get();
	Manager.LoadModule("Recording", MakeShared<FRecordingModule>(Events));
	EXPECT_TRUE(Manager.IsModuleLoaded("recording")) << "names ignore case";
	EXPECT_EQ(&Manager.GetModuleChecked<FRecordingModule>("Recording"), Manager.GetModule("Recording"));
	Manager.UnloadModule("Recording");
	Manager.UnloadModule("Recording");
	EXPECT_EQ(Events, "start(found) stop(found) gone ");
	EXPECT_EQ(Manager.GetModule("Recording"), nullptr);
}

TEST(ModuleManagerDeathTest, NamesTheModuleThatIsNotLoaded)
{
	EXPECT_DEATH(FModuleManager::Get().GetModuleChecked("Absent"), "Tried to get module interface for unloaded module: 'Absent'");
}
