#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "IndexFixture.h"
#include "Support/Cases.h"

namespace
{
/** Calls back when a scan begins to read headers. */
class FObservedSource final : public IPackageSource
{
public:
	FObservedSource(const IPackageSource& InInner, std::function<void()> InOnRead) : Inner(InInner), OnRead(std::move(InOnRead))
	{
	}

	bool IsPackageFile(std::string_view RelativePath) const override { return Inner.IsPackageFile(RelativePath); }
	std::size_t GetExtensionLength() const override { return Inner.GetExtensionLength(); }
	uint64 GetMaxFileBytes() const override { return Inner.GetMaxFileBytes(); }
	TUniquePtr<IPackageReader> MakeReader() const override
	{
		OnRead();
		return Inner.MakeReader();
	}
	uint32 GetHeaderVersion() const override { return Inner.GetHeaderVersion(); }

private:
	const IPackageSource& Inner;
	const std::function<void()> OnRead;
};

/** As whoever opens a project does. */
bool Scan(FIndexProject& Project, FRegistryScanOptions Options, FRegistryScanReport& Report)
{
	const FFindInBlueprintSearchManager::FIndexingRun Run(Options.Stop);
	Options.Stop = Run.GetStopToken();
	return Project.Registry.Scan(Options, Report);
}
}

TEST(FindInBlueprintSearchManager, IndexesFilesChangedSinceTheCache)
{
	FIndexProject Project;
	FFindInBlueprintSearchManager& Manager = FFindInBlueprintSearchManager::Get();
	FRegistryScanReport Report;
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Old|\n");
	Project.Package("B", "asset B /Script/Engine.Blueprint\nentry 0 Var|Same|\n");
	EXPECT_TRUE(Scan(Project, Project.MakeOptions(), Report));
	EXPECT_EQ(Report.NumParsed, 2);
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Renewed|\n");
	EXPECT_EQ(Manager.GetIndex().FindTexts("renewed").size(), 0u);
	EXPECT_TRUE(Scan(Project, Project.MakeOptions(), Report));
	EXPECT_EQ(Report.NumParsed, 1);
	EXPECT_EQ(Manager.GetIndex().FindTexts("renewed").size(), 1u);
	EXPECT_FALSE(Manager.IsUnindexedCacheInProgress());
}

TEST(FindInBlueprintSearchManager, ARunCanBeCancelled)
{
	FIndexProject Project;
	FFindInBlueprintSearchManager& Manager = FFindInBlueprintSearchManager::Get();
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Health|\n");
	Project.ScanAll();
	Project.Package("B", "asset B /Script/Engine.Blueprint\nentry 0 Var|Health2|\n");
	Manager.CancelCacheAll(nullptr); // without a run: nothing

	const struct
	{
		const char* Why;
		bool bThroughManager;
		bool bThroughOptions;
	} Cases[] = {{"by the manager", true, false}, {"by whoever opens the project", false, true}, {"by nobody", false, false}};
	for (const auto& Case : Traced(Cases))
	{
		std::stop_source Stop;
		const FObservedSource Source(Project.Source,
			[&]
			{
				EXPECT_TRUE(Manager.IsUnindexedCacheInProgress());
				if (Case.bThroughManager)
					Manager.CancelCacheAll(nullptr);
				if (Case.bThroughOptions)
					Stop.request_stop();
			});
		FRegistryScanOptions Options = Project.MakeOptions();
		Options.Sources = {&Source};
		Options.Stop = Stop.get_token();
		FRegistryScanReport Report;
		const bool bCancelled = Case.bThroughManager || Case.bThroughOptions;
		EXPECT_EQ(Scan(Project, Options, Report), !bCancelled);
		EXPECT_EQ(Manager.GetIndex().FindTexts("health").size(), bCancelled ? 1u : 2u) << "a cancelled run changes nothing";
		EXPECT_FALSE(Manager.IsUnindexedCacheInProgress());
	}
}
