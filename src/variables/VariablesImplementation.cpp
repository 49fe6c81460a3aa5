#include "variables/VariablesImplementation.h"

#include "variables/VariableImplementation.h"

namespace harvlink {

VariablesImplementation::VariablesImplementation(NetworkManager* networkManager, int rs22State, int numberOfToolFiles)
    : VariablesImplementation() {
    byteVariable = new ByteVariableImplementation(networkManager, rs22State);
    integerVariable = new IntegerVariableImplementation(networkManager, rs22State);
    doubleIntVariable = new DoubleIntVariableImplementation(networkManager, rs22State);
    realVariable = new RealVariableImplementation(networkManager, rs22State);
    stringVariable = new StringVariableImplementation(networkManager, rs22State);
    robotPositionVariable = new RobotPositionVariableImplementation(networkManager, rs22State, numberOfToolFiles);
    basePositionVariable = new BasePositionVariableImplementation(networkManager, rs22State);
    stationPositionVariable = new StationPositionVariableImplementation(networkManager, rs22State);
}

VariablesImplementation::~VariablesImplementation() {
    delete byteVariable;
    delete integerVariable;
    delete doubleIntVariable;
    delete realVariable;
    delete stringVariable;
    delete robotPositionVariable;
    delete basePositionVariable;
    delete stationPositionVariable;
}

} // namespace harvlink
