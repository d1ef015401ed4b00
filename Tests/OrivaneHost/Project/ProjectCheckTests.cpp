#include "Project/ProjectCheck.h"

#include "Support/Golden.h"
#include "Support/TestProject.h"

namespace
{
/** Faults as "file:line:column severity text [rule]", one a line; "Content/" is left out. */
std::string Check(FTestProject& Project)
{
	Project.Open();
	FDiagnosticSink Sink;
	CheckPackages(Sink, {});
	std::string Text;
	for (const FDiagnostic& Diagnostic : Sink.GetSorted())
		Text += Diagnostic.ToString().Replace("Content/", "").ToStdString() + "\n";
	return Text;
}
}

TEST(ProjectCheck, NamesFaultsOfMaterials)
{
	FTestProject Project;
	Project.MaterialInstance("/Game/MI_1", "/Game/MI_2");
	Project.MaterialInstance("/Game/MI_2", "/Game/MI_3");
	Project.MaterialInstance("/Game/MI_3", "/Game/mi_2"); // MI_1 leads into the cycle of the other two
	Project.MaterialInstance("/Game/MI_Self", "/Game/MI_Self");
	Project.MaterialInstance("/Game/MI_Lost", "/Game/MI_Gone");
	Project.Material("/Game/M_Odd").Scalar("A", "1e39").Scalar("a", "2").Scalar("Fine", "null").Vector("V", R"({"R": 1e999})");
	ExpectGolden("Check/materials.txt", Check(Project));
}

TEST(ProjectCheck, NamesRingsThatCrossPackages)
{
	FTestProject Project;
	const auto Tree = [&Project](const std::string& Name, const std::string& SubTrees)
	{
		Project.Asset("/Game/" + Name, "BehaviorTree")
			.Set("RootNode", R"("^Root")")
			.Inner("Root", "BTComposite_Sequence",
				R"("Children": [{"ChildTask": "^Root.Run"}, {"ChildTask": "^Root.Other"}, {"ChildTask": "^Root.Run"}])")
			.Inner("Root.Run", "BTTask_RunBehavior", R"("BehaviorAsset": )" + SubTrees)
			.Inner("Root.Other", "BTTask_RunBehavior", R"("BehaviorAsset": "/Game/BT_Leaf.BT_Leaf")")
			.Inner("Unused", "BTTask_RunBehavior", R"("BehaviorAsset": "/Game/BT_A.BT_A")");
	};
	Tree("BT_A", R"("/Game/BT_B.BT_B")");
	Tree("BT_B", R"("/Game/BT_C.BT_C")");
	Tree("BT_C", R"("/Game/BT_A.BT_A")");
	Tree("BT_Out", R"("/Game/BT_C.BT_C")");
	Tree("BT_Self", R"("/Game/BT_Self.BT_Self")");
	Project.Asset("/Game/BT_Leaf", "BehaviorTree");
	Project.Asset("/Game/BB_A", "BlackboardData").Set("Parent", R"("/Game/BB_B.BB_B")");
	Project.Asset("/Game/BB_B", "BlackboardData").Set("Parent", R"("/Game/BB_A.BB_A")");
	Project.Asset("/Game/S_A", "UserDefinedStruct").Set("SuperStruct", R"("/Game/S_B.S_B")");
	Project.Asset("/Game/S_B", "UserDefinedStruct").Set("SuperStruct", R"("/Game/S_A.S_A")");
	ExpectGolden("Check/rings.txt", Check(Project));
}

TEST(ProjectCheck, NamesFaultsOfParticleSystems)
{
	FTestProject Project;
	Project.NiagaraSystem("/Game/NS_Odd")
		.Handle("None", "null")
		.Handle("Gone", R"("NS_Odd:Gone")")
		.Handle("Away", R"("/Game/NS_Gone.NS_Gone:E")")
		.UserParameter("User.A", "/Script/Test.Gone")
		.UserParameter("user.a");
	ExpectGolden("Check/particle_systems.txt", Check(Project));
}
