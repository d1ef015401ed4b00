#include "ProjectCheck.h"

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
		"MI_2.vasset: error: parents of a material instance lead back to it: /Game/mi_2.mi_2 -> /Game/MI_3.MI_3 -> "
		"/Game/mi_2.mi_2 [parent-cycle]\n"
		"MI_Lost.vasset:1:333: error: there is no object /Game/MI_Gone.MI_Gone [bad-reference]\n"
		"MI_Self.vasset: error: parents of a material instance lead back to it: /Game/MI_Self.MI_Self -> "
		"/Game/MI_Self.MI_Self [parent-cycle]\n");
}

TEST(ProjectCheck, NamesLongLinesOfParentsOnce)
{
	for (const int32 NumInstances : {64, 65, 70})
	{
		FTestProject Project;
		Project.Material("/Game/M_0");
		for (int32 Level = 1; Level <= NumInstances; ++Level)
			Project.MaterialInstance("/Game/M_" + std::to_string(Level), "/Game/M_" + std::to_string(Level - 1));
		EXPECT_EQ(Check(Project),
			NumInstances == 64
				? ""
				: "M_65.vasset: warning: a material instance has more than 64 parents above it; parameters of those "
				  "beyond are not seen [long-parents]\n");
	}
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
