#include "OrivaneHost/Program.h"

int main(int NumArguments, char** Arguments)
{
	return RunOrivane(NumArguments, Arguments);
}
