#include "Project/ProjectCheck.h"

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
	EXPECT_EQ(Check(Project),
		"M_Odd.vasset:1:258: error: the number is out of range for 'Value' of type float [property-range]\n"
		"M_Odd.vasset:1:274: warning: the list has a parameter 'a' already; the first one counts [repeated-parameter]\n"
		"M_Odd.vasset:1:376: error: the number is out of range for 'R' of type float [property-range]\n"
		"MI_2.vasset: error: parents of a material instance lead back to it: /Game/MI_2.MI_2 -> /Game/MI_3.MI_3 -> "
		"/Game/MI_2.MI_2 [parent-cycle]\n"
		"MI_Lost.vasset:1:333: error: there is no object /Game/MI_Gone.MI_Gone [bad-reference]\n"
		"MI_Self.vasset: error: parents of a material instance lead back to it: /Game/MI_Self.MI_Self -> "
		"/Game/MI_Self.MI_Self [parent-cycle]\n");
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
	EXPECT_EQ(Check(Project),
		"BB_A.vasset: error: parents of a blackboard lead back to it: /Game/BB_A.BB_A -> /Game/BB_B.BB_B -> /Game/BB_A.BB_A "
		"[parent-cycle]\n"
		"BT_A.vasset: warning: trees that a behaviour tree runs lead back to it: /Game/BT_A.BT_A -> /Game/BT_B.BT_B -> "
		"/Game/BT_C.BT_C -> /Game/BT_A.BT_A [subtree-cycle]\n"
		"BT_Self.vasset: warning: trees that a behaviour tree runs lead back to it: /Game/BT_Self.BT_Self -> "
		"/Game/BT_Self.BT_Self [subtree-cycle]\n"
		"S_A.vasset:1:255: error: the parent /Game/S_B.S_B is left out: parents and values lead in a ring: /Game/S_A.S_A -> "
		"/Game/S_B.S_B -> /Game/S_A.S_A [parent-cycle]\n"
		"S_B.vasset:1:255: error: the parent /Game/S_A.S_A is left out: parents and values lead in a ring: /Game/S_A.S_A -> "
		"/Game/S_B.S_B -> /Game/S_A.S_A [parent-cycle]\n");
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
	EXPECT_EQ(Check(Project),
		"NS_Odd.vasset:1:328: error: there is no object 'NS_Odd:Gone' [bad-reference]\n"
		"NS_Odd.vasset:1:372: error: there is no object /Game/NS_Gone.NS_Gone:E [bad-reference]\n"
		"NS_Odd.vasset:1:447: error: there is no object '/Script/Test.Gone' [bad-reference]\n"
		"NS_Odd.vasset:1:478: warning: the system has a user parameter 'user.a' already [repeated-parameter]\n");
}
