#pragma once

// A fixture light enough that its count table (200) is the only limit a long run meets.
inline const char* const kMaximizeCatalog = R"(<?xml version="1.0" encoding="UTF-8"?>
<BenchCatalog>
  <DBVersion>bench-1</DBVersion>
  <SupplyOutputModeList><SupplyOutputMode><Name>Dynaline</Name><WireCount>3</WireCount></SupplyOutputMode></SupplyOutputModeList>
  <PowerSupplyList>
    <PowerSupply><Name>Bench Enabler</Name><Type>dynaline</Type><OutputModes><OutputMode>Dynaline</OutputMode></OutputModes>
      <MaxElectricalLength>100000</MaxElectricalLength><MaxElectricalLengthPerRun>100000</MaxElectricalLengthPerRun>
      <MaxNumFixtures>1000</MaxNumFixtures><Power>10</Power><PowerFactor>0.9</PowerFactor></PowerSupply>
  </PowerSupplyList>
  <FixtureList>
    <Fixture><Name>Bench Dot</Name><Type>dynaline</Type><Family>2</Family>
      <MaxTemp>40</MaxTemp><Resistance>1</Resistance><ElectricalLength>1</ElectricalLength><Power>0.5</Power><PowerFactor>0.9</PowerFactor>
      <FudgeFactor>1</FudgeFactor><SafetyRequired>0</SafetyRequired><StartingVoltage>120</StartingVoltage>
      <MaxVoltageDrop>50</MaxVoltageDrop>
      <ValidSupplyList><Supply>Bench Enabler</Supply></ValidSupplyList>
      <ValidVoltages><Voltage><Value>120</Value><VoltagePowerFactor>0.9</VoltagePowerFactor><VoltagePower>0.5</VoltagePower><VoltageMaxFixtureCount>200</VoltageMaxFixtureCount></Voltage></ValidVoltages>
    </Fixture>
  </FixtureList>
</BenchCatalog>
)";
