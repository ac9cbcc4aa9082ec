// The functions that run the commands, one for each entry of the table. Each answers the exit
// status and tells its failures itself.
#pragma once

namespace cli {

struct Program;

int RunList(Program& program);
int RunFind(Program& program);
int RunShow(Program& program);
int RunInfo(Program& program);
int RunVerify(Program& program);
int RunScan(Program& program);
int RunUpdate(Program& program);
int RunCrc(Program& program);
int RunSet(Program& program);
int RunBackup(Program& program);
int RunCompact(Program& program);
int RunRepair(Program& program);
int RunSnapshot(Program& program);
int RunRestore(Program& program);
int RunPathMap(Program& program);
int RunPlay(Program& program);
int RunExport(Program& program);
int RunImport(Program& program);
int RunHistory(Program& program);
int RunUndo(Program& program);

}  // namespace cli
