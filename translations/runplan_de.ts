<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Analysis</name>
    <message>
        <source>
Fixture count in current run (%1) exceeded the fixture type&apos;s maximum (%2).</source>
        <translation>
Leuchtenzahl im aktuellen Strang (%1) überschreitet das Maximum des Leuchtentyps (%2).</translation>
    </message>
    <message>
        <source>
Total length exceeds the fixture type&apos;s maximum of %1 ft.</source>
        <translation>
Gesamtlänge überschreitet das Maximum des Leuchtentyps von %1 ft.</translation>
    </message>
    <message>
        <source>
Total voltage drop exceeded the fixture type&apos;s maximum of %1 volts.</source>
        <translation>
Gesamter Spannungsabfall überschreitet das Maximum des Leuchtentyps von %1 Volt.</translation>
    </message>
    <message>
        <source>
Voltage dropped exceeded the fixture type&apos;s maximum percentage of %1.</source>
        <translation>
Spannungsabfall überschreitet den maximalen Prozentsatz des Leuchtentyps von %1.</translation>
    </message>
    <message>
        <source>
Total power exceeded the fixture type&apos;s maximum of %1 watts.</source>
        <translation>
Gesamtleistung überschreitet das Maximum des Leuchtentyps von %1 Watt.</translation>
    </message>
    <message>
        <source>
Total current exceeded  the fixture type&apos;s maximum of %1 amps.</source>
        <translation>
Gesamtstrom überschreitet das Maximum des Leuchtentyps von %1 Ampere.</translation>
    </message>
    <message>
        <source>
Voltage dropped below the fixture type&apos;s minimum of %1 volts.</source>
        <translation>
Spannung fiel unter das Minimum des Leuchtentyps von %1 Volt.</translation>
    </message>
    <message>
        <source>
Total current of %1 amps exceeded the maximum load of %2.</source>
        <translation>
Gesamtstrom von %1 Ampere überschreitet die maximale Last von %2.</translation>
    </message>
    <message>
        <source>
Receiver count (%1) exceeded this controller&apos;s maximum (%2).</source>
        <translation>
Receiverzahl (%1) überschreitet das Maximum dieses Controllers (%2).</translation>
    </message>
    <message>
        <source>
Dynaline run ending at fixture %1 exceeds its enabler&apos;s maximum fixture count.</source>
        <translation>
Der Dynaline-Strang, der an Leuchte %1 endet, überschreitet die maximale Leuchtenzahl seines Enablers.</translation>
    </message>
    <message>
        <source>
Dynaline length from Feedwise Receiver #%1 = %2</source>
        <translation>
Dynaline-Länge ab Feedwise-Receiver #%1 = %2</translation>
    </message>
    <message>
        <source>
Dynaline run ending at %1 #%2 is too long (%3 ft).</source>
        <translation>
Der Dynaline-Strang, der an %1 #%2 endet, ist zu lang (%3 ft).</translation>
    </message>
    <message>
        <source>fixture</source>
        <translation>Leuchte</translation>
    </message>
    <message>
        <source>jumper</source>
        <translation>Jumper</translation>
    </message>
    <message>
        <source>
Total Dynaline length of %1 exceeds total limit of %2.</source>
        <translation>
Dynaline-Gesamtlänge von %1 überschreitet die Gesamtgrenze von %2.</translation>
    </message>
    <message>
        <source>(derated to %1 amps)</source>
        <translation>(reduziert auf %1 Ampere)</translation>
    </message>
    <message>
        <source>Total Fixtures: %1</source>
        <translation>Leuchten gesamt: %1</translation>
    </message>
    <message>
        <source>
Total Inrush Current = %1 amps</source>
        <translation>
Gesamter Einschaltstrom = %1 Ampere</translation>
    </message>
    <message>
        <source>
Total Current Leakage = %1 amps</source>
        <translation>
Gesamter Ableitstrom = %1 Ampere</translation>
    </message>
    <message>
        <source>Length = %1 Power = %2 Current = %3 VDrop = %4%5%6%7 R = %8</source>
        <translation>Länge = %1 Leistung = %2 Strom = %3 U-Abfall = %4%5%6%7 R = %8</translation>
    </message>
    <message>
        <source>fixture count</source>
        <translation>Leuchtenzahl</translation>
    </message>
    <message>
        <source>fixture type&apos;s length</source>
        <translation>Länge des Leuchtentyps</translation>
    </message>
    <message>
        <source>run length</source>
        <translation>Stranglänge</translation>
    </message>
    <message>
        <source>voltage drop</source>
        <translation>Spannungsabfall</translation>
    </message>
    <message>
        <source>voltage drop share</source>
        <translation>Anteil des Spannungsabfalls</translation>
    </message>
    <message>
        <source>power</source>
        <translation>Leistung</translation>
    </message>
    <message>
        <source>current</source>
        <translation>Strom</translation>
    </message>
    <message>
        <source>minimum voltage</source>
        <translation>Mindestspannung</translation>
    </message>
    <message>
        <source>at most %1 fixtures</source>
        <translation>höchstens %1 Leuchten</translation>
    </message>
    <message>
        <source>at most %1 ft</source>
        <translation>höchstens %1 ft</translation>
    </message>
    <message>
        <source>at most %1 V</source>
        <translation>höchstens %1 V</translation>
    </message>
    <message>
        <source>at most %1 of the line voltage</source>
        <translation>höchstens %1 der Netzspannung</translation>
    </message>
    <message>
        <source>at most %1 W</source>
        <translation>höchstens %1 W</translation>
    </message>
    <message>
        <source>at most %1 A</source>
        <translation>höchstens %1 A</translation>
    </message>
    <message>
        <source>at least %1 V</source>
        <translation>mindestens %1 V</translation>
    </message>
</context>
<context>
    <name>CFrame</name>
    <message>
        <source>Delete multiple items</source>
        <translation>Mehrere Elemente löschen</translation>
    </message>
    <message>
        <source>Do you want to delete this component and all the components attached to it?</source>
        <translation>Möchten Sie diese Komponente und alle daran angeschlossenen Komponenten löschen?</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>%1 V</source>
        <translation>%1 V</translation>
    </message>
</context>
<context>
    <name>CFrameItemDelegate</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1: %2 + Junction Box</source>
        <translation>%1: %2 + Abzweigdose</translation>
    </message>
    <message>
        <source>%1 - %2 ft</source>
        <translation>%1 - %2 ft</translation>
    </message>
    <message>
        <source>Branch Wire - %2 ft</source>
        <translation>Abzweigleitung - %2 ft</translation>
    </message>
</context>
<context>
    <name>CWidgetModel</name>
    <message>
        <source>Selected Component</source>
        <translation>Ausgewählte Komponente</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Gauge</source>
        <translation>Querschnitt</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
    <message>
        <source>Output Mode</source>
        <translation>Ausgabemodus</translation>
    </message>
    <message>
        <source>Input Mode</source>
        <translation>Eingangsmodus</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Verlegeort</translation>
    </message>
    <message>
        <source>DL / Line Voltage Length</source>
        <translation>DL-/Netzspannungslänge</translation>
    </message>
</context>
<context>
    <name>CommandText</name>
    <message>
        <source>Add %1</source>
        <translation>%1 hinzufügen</translation>
    </message>
    <message>
        <source>Delete %1</source>
        <translation>%1 löschen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Change %1</source>
        <translation>%1 ändern</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximieren</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Enabler</source>
        <translation>Enabler</translation>
    </message>
    <message>
        <source>Leader</source>
        <translation>Zuleitung</translation>
    </message>
    <message>
        <source>Fixture</source>
        <translation>Leuchte</translation>
    </message>
    <message>
        <source>Jumper</source>
        <translation>Jumper</translation>
    </message>
    <message>
        <source>Receiver</source>
        <translation>Receiver</translation>
    </message>
    <message>
        <source>Branch Wire</source>
        <translation>Abzweigleitung</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
</context>
<context>
    <name>Database</name>
    <message>
        <source>Error in database file:
Jumper/Leader element with no Name</source>
        <translation>Fehler in der Datenbankdatei:
Jumper-/Leader-Element ohne Name</translation>
    </message>
    <message>
        <source>Error parsing %1
MaxVoltageDrop, MinVoltage, and VoltageDropPercent are zero</source>
        <translation>Fehler beim Lesen von %1
MaxVoltageDrop, MinVoltage und VoltageDropPercent sind null</translation>
    </message>
    <message>
        <source>Error parsing %1
MaxElectricalLength and MaxNumFixtures are both zero</source>
        <translation>Fehler beim Lesen von %1
MaxElectricalLength und MaxNumFixtures sind beide null</translation>
    </message>
    <message>
        <source>elements nested more than %1 levels deep</source>
        <translation>Elemente mehr als %1 Ebenen tief verschachtelt</translation>
    </message>
    <message>
        <source>Cannot read database file %1:
%2.</source>
        <translation>Die Datenbankdatei %1 kann nicht gelesen werden:
%2.</translation>
    </message>
    <message>
        <source>Error parsing database file %1:
%2
Line %3 Column %4</source>
        <translation>Fehler beim Lesen der Datenbankdatei %1:
%2
Zeile %3 Spalte %4</translation>
    </message>
    <message>
        <source>Error in database file %1:
DBVersion %2 not found.</source>
        <translation>Fehler in der Datenbankdatei %1:
DBVersion %2 nicht gefunden.</translation>
    </message>
    <message>
        <source>Error in database file %1:
DBVersion %2 does not match previous (%3)</source>
        <translation>Fehler in der Datenbankdatei %1:
DBVersion %2 stimmt nicht mit der vorherigen (%3) überein</translation>
    </message>
    <message>
        <source>Error in database file %1:
%2 element with no Name</source>
        <translation>Fehler in der Datenbankdatei %1:
%2-Element ohne Name</translation>
    </message>
    <message>
        <source>Error in database file %1:
%2 %3 has unknown type</source>
        <translation>Fehler in der Datenbankdatei %1:
%2 %3 hat einen unbekannten Typ</translation>
    </message>
    <message>
        <source>Error parsing &quot;%1&quot; field for %2</source>
        <translation>Fehler beim Lesen des Felds &quot;%1&quot; für %2</translation>
    </message>
    <message>
        <source>Error in database file:
CustomWire element with no Name</source>
        <translation>Fehler in der Datenbankdatei:
CustomWire-Element ohne Name</translation>
    </message>
    <message>
        <source>Error parsing &quot;Valid Supply&quot; item for fixture %1.
Supply %2 not defined.</source>
        <translation>Fehler beim Lesen des Eintrags &quot;Valid Supply&quot; für Leuchte %1.
Versorgung %2 ist nicht definiert.</translation>
    </message>
</context>
<context>
    <name>DesignReport</name>
    <message>
        <source>Enabler</source>
        <translation>Enabler</translation>
    </message>
    <message>
        <source>Supply</source>
        <translation>Versorgung</translation>
    </message>
    <message>
        <source>Leader</source>
        <translation>Zuleitung</translation>
    </message>
    <message>
        <source>Fixture</source>
        <translation>Leuchte</translation>
    </message>
    <message>
        <source>Jumper</source>
        <translation>Jumper</translation>
    </message>
    <message>
        <source>Receiver</source>
        <translation>Receiver</translation>
    </message>
    <message>
        <source>Branch Wire</source>
        <translation>Abzweigleitung</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
    <message>
        <source>Component</source>
        <translation>Komponente</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Catalog Name</source>
        <translation>Katalogname</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Gauge</source>
        <translation>Querschnitt</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Verlegeort</translation>
    </message>
    <message>
        <source>Quantity</source>
        <translation>Menge</translation>
    </message>
    <message>
        <source>Total Length (ft)</source>
        <translation>Gesamtlänge (ft)</translation>
    </message>
    <message>
        <source>%1 #%2</source>
        <translation>%1 #%2</translation>
    </message>
    <message>
        <source>Voltage: %1 V</source>
        <translation>Spannung: %1 V</translation>
    </message>
    <message>
        <source> (minimum %1 V)</source>
        <translation> (Minimum %1 V)</translation>
    </message>
    <message>
        <source>Drop from the enabler: %1 V (%2 % of the line voltage)</source>
        <translation>Abfall ab dem Enabler: %1 V (%2 % der Netzspannung)</translation>
    </message>
    <message>
        <source>Current: %1 A</source>
        <translation>Strom: %1 A</translation>
    </message>
    <message>
        <source>Power at and below: %1 W</source>
        <translation>Leistung hier und darunter: %1 W</translation>
    </message>
    <message>
        <source>%1 %2 V (%3 % of the margin above it used)</source>
        <translation>%1 %2 V (%3 % des Spielraums darüber genutzt)</translation>
    </message>
    <message>
        <source>%1 %2 of %3 (%4 % used)</source>
        <translation>%1 %2 von %3 (%4 % genutzt)</translation>
    </message>
    <message>
        <source>Nearest limits: %1</source>
        <translation>Nächste Grenzwerte: %1</translation>
    </message>
    <message>
        <source>Worst of the %1 runs through it: the run ending at %2</source>
        <translation>Ungünstigster der %1 Stränge hindurch: der Strang, der an %2 endet</translation>
    </message>
    <message>
        <source>Run ending at %1</source>
        <translation>Strang endend an %1</translation>
    </message>
    <message>
        <source>Runplan Design Report</source>
        <translation>Runplan-Planungsbericht</translation>
    </message>
    <message>
        <source>(not saved)</source>
        <translation>(nicht gespeichert)</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Line voltage</source>
        <translation>Netzspannung</translation>
    </message>
    <message>
        <source>%1 V</source>
        <translation>%1 V</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Circuit load</source>
        <translation>Kreislast</translation>
    </message>
    <message>
        <source>%1 A (derated to %2 A)</source>
        <translation>%1 A (reduziert auf %2 A)</translation>
    </message>
    <message>
        <source>Controller</source>
        <translation>Controller</translation>
    </message>
    <message>
        <source>Catalog version</source>
        <translation>Katalogversion</translation>
    </message>
    <message>
        <source>Program version</source>
        <translation>Programmversion</translation>
    </message>
    <message>
        <source>PASS</source>
        <translation>BESTANDEN</translation>
    </message>
    <message>
        <source>FAIL</source>
        <translation>NICHT BESTANDEN</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>Strang</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Fixtures</source>
        <translation>Leuchten</translation>
    </message>
    <message>
        <source>Length (ft)</source>
        <translation>Länge (ft)</translation>
    </message>
    <message>
        <source>Power (W)</source>
        <translation>Leistung (W)</translation>
    </message>
    <message>
        <source>Current (A)</source>
        <translation>Strom (A)</translation>
    </message>
    <message>
        <source>Drop (V)</source>
        <translation>Abfall (V)</translation>
    </message>
    <message>
        <source>Drop (%)</source>
        <translation>Abfall (%)</translation>
    </message>
    <message>
        <source>At end (V)</source>
        <translation>Am Ende (V)</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Limits: none</source>
        <translation>Grenzwerte: keine</translation>
    </message>
    <message>
        <source>Limits: %1</source>
        <translation>Grenzwerte: %1</translation>
    </message>
    <message>
        <source>Longer than its run length limit of %1 ft.</source>
        <translation>Länger als die Grenze der Stranglänge von %1 ft.</translation>
    </message>
    <message>
        <source>Total length</source>
        <translation>Gesamtlänge</translation>
    </message>
    <message>
        <source>%1 ft</source>
        <translation>%1 ft</translation>
    </message>
    <message>
        <source>Total power</source>
        <translation>Gesamtleistung</translation>
    </message>
    <message>
        <source>%1 W</source>
        <translation>%1 W</translation>
    </message>
    <message>
        <source>Total current</source>
        <translation>Gesamtstrom</translation>
    </message>
    <message>
        <source>%1 A of %2 A derated load</source>
        <translation>%1 A von %2 A reduzierter Last</translation>
    </message>
    <message>
        <source>Largest voltage drop</source>
        <translation>Größter Spannungsabfall</translation>
    </message>
    <message>
        <source>Largest run resistance</source>
        <translation>Größter Strangwiderstand</translation>
    </message>
    <message>
        <source>%1 ohm</source>
        <translation>%1 Ohm</translation>
    </message>
    <message>
        <source>Receivers</source>
        <translation>Receiver</translation>
    </message>
    <message>
        <source>Inrush current</source>
        <translation>Einschaltstrom</translation>
    </message>
    <message>
        <source>%1 A</source>
        <translation>%1 A</translation>
    </message>
    <message>
        <source>not given</source>
        <translation>nicht angegeben</translation>
    </message>
    <message>
        <source>Leakage current</source>
        <translation>Ableitstrom</translation>
    </message>
    <message>
        <source>Feedwise length</source>
        <translation>Feedwise-Länge</translation>
    </message>
</context>
<context>
    <name>DialogPrompter</name>
    <message>
        <source>This operation will clear the current configuration</source>
        <translation>Dieser Vorgang leert die aktuelle Konfiguration</translation>
    </message>
    <message>
        <source>Do you want to continue?</source>
        <translation>Möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Do you want to save the changes you made to the configuration &apos;%1&apos;?</source>
        <translation>Möchten Sie die Änderungen an der Konfiguration &apos;%1&apos; speichern?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don&apos;t save them.</source>
        <translation>Ihre Änderungen gehen verloren, wenn Sie sie nicht speichern.</translation>
    </message>
    <message>
        <source> already exists. Do you want to replace it?</source>
        <translation> ist bereits vorhanden. Möchten Sie die Datei ersetzen?</translation>
    </message>
    <message>
        <source>A file or folder with the same name already exists in the folder </source>
        <translation>Eine Datei oder ein Ordner mit demselben Namen befindet sich bereits im Ordner </translation>
    </message>
    <message>
        <source>. Replacing it will overwrite its current contents.</source>
        <translation>. Beim Ersetzen wird der bisherige Inhalt überschrieben.</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Delete multiple items</source>
        <translation>Mehrere Elemente löschen</translation>
    </message>
    <message>
        <source>Do you want to delete this component and all the components attached to it?</source>
        <translation>Möchten Sie diese Komponente und alle daran angeschlossenen Komponenten löschen?</translation>
    </message>
    <message>
        <source>%1 was not read completely. Replace it with the configuration as shown?</source>
        <translation>%1 wurde nicht vollständig gelesen. Durch die angezeigte Konfiguration ersetzen?</translation>
    </message>
    <message>
        <source>Runplan closed unexpectedly. Recover the unsaved changes to %1?</source>
        <translation>Runplan wurde unerwartet beendet. Die nicht gespeicherten Änderungen an %1 wiederherstellen?</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Verwerfen</translation>
    </message>
</context>
<context>
    <name>DocumentLifecycle</name>
    <message>
        <source>Untitled.rpproj</source>
        <translation>Untitled.rpproj</translation>
    </message>
    <message>
        <source>%1[*] - %2 Release %3.%4.%5 [Build %6-%7]</source>
        <translation>%1[*] - %2 Version %3.%4.%5 [Build %6-%7]</translation>
    </message>
    <message>
        <source>&amp;Save %1</source>
        <translation>%1 &amp;speichern</translation>
    </message>
    <message>
        <source>Save %1 &amp;As...</source>
        <translation>%1 speichern &amp;unter …</translation>
    </message>
    <message>
        <source>Open Configuration</source>
        <translation>Konfiguration öffnen</translation>
    </message>
    <message>
        <source>Save Configuration</source>
        <translation>Konfiguration speichern</translation>
    </message>
    <message>
        <source>Configuration Files (*.rpproj);;All Files (*.* *)</source>
        <translation>Konfigurationsdateien (*.rpproj);;Alle Dateien (*.* *)</translation>
    </message>
</context>
<context>
    <name>ExportRunner</name>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>writing %1 failed: %2</source>
        <translation>Schreiben von %1 fehlgeschlagen: %2</translation>
    </message>
</context>
<context>
    <name>HeaderChoices</name>
    <message>
        <source>Other</source>
        <translation>Other</translation>
    </message>
</context>
<context>
    <name>LoadingDialog</name>
    <message>
        <source>Working, please wait...</source>
        <translation>Wird bearbeitet, bitte warten …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Runplan</source>
        <translation>Runplan</translation>
    </message>
</context>
<context>
    <name>Maximize</name>
    <message>
        <source>Fixture Count is now: %1</source>
        <translation>Leuchtenzahl ist jetzt: %1</translation>
    </message>
</context>
<context>
    <name>ProjectFile</name>
    <message>
        <source>Linea Trough Model A Dynaline 6in</source>
        <translation>Linea Trough Model A Dynaline 6in</translation>
    </message>
    <message>
        <source>Linea Trough Model A Dynaline 6in (100v - 120v)</source>
        <translation>Linea Trough Model A Dynaline 6in (100v - 120v)</translation>
    </message>
    <message>
        <source>Linea Trough Model B Dynaline 6in</source>
        <translation>Linea Trough Model B Dynaline 6in</translation>
    </message>
    <message>
        <source>Linea Trough Model B Dynaline 6in (100v - 120v)</source>
        <translation>Linea Trough Model B Dynaline 6in (100v - 120v)</translation>
    </message>
    <message>
        <source>Glowbar Tunable Dynaline 1ft</source>
        <translation>Glowbar Tunable Dynaline 1ft</translation>
    </message>
    <message>
        <source>Stylebar Tunable Dynaline 1ft</source>
        <translation>Stylebar Tunable Dynaline 1ft</translation>
    </message>
    <message>
        <source>Glowbar Tint (RGBA/RGBW) Dynaline 1ft</source>
        <translation>Glowbar Tint (RGBA/RGBW) Dynaline 1ft</translation>
    </message>
    <message>
        <source>Stylebar Tint (RGBA/RGBW) Dynaline 1ft</source>
        <translation>Stylebar Tint (RGBA/RGBW) Dynaline 1ft</translation>
    </message>
    <message>
        <source>Glowbar Tunable Dynaline 4ft</source>
        <translation>Glowbar Tunable Dynaline 4ft</translation>
    </message>
    <message>
        <source>Stylebar Tunable Dynaline 4ft</source>
        <translation>Stylebar Tunable Dynaline 4ft</translation>
    </message>
    <message>
        <source>Glowbar Tint (RGBA/RGBW) Dynaline 4ft</source>
        <translation>Glowbar Tint (RGBA/RGBW) Dynaline 4ft</translation>
    </message>
    <message>
        <source>Stylebar Tint (RGBA/RGBW) Dynaline 4ft</source>
        <translation>Stylebar Tint (RGBA/RGBW) Dynaline 4ft</translation>
    </message>
    <message>
        <source>Failed to save configuration: %1</source>
        <translation>Konfiguration konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>Save Error</source>
        <translation>Fehler beim Speichern</translation>
    </message>
    <message>
        <source>Cannot open file %1:
%2.</source>
        <translation>Die Datei %1 kann nicht geöffnet werden:
%2.</translation>
    </message>
    <message>
        <source>Failed to save configuration file: %1</source>
        <translation>Konfigurationsdatei konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>Configuration saved</source>
        <translation>Konfiguration gespeichert</translation>
    </message>
    <message>
        <source>Failed to open configuration: %1</source>
        <translation>Konfiguration konnte nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <source>Failed to open configuration %1: %2</source>
        <translation>Konfiguration %1 konnte nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>Open Error</source>
        <translation>Fehler beim Öffnen</translation>
    </message>
    <message>
        <source>Cannot read file %1:
%2.</source>
        <translation>Die Datei %1 kann nicht gelesen werden:
%2.</translation>
    </message>
    <message>
        <source>Failed to open configuration %1</source>
        <translation>Konfiguration %1 konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Found %1 CFrame elements</source>
        <translation>%1 CFrame-Elemente gefunden</translation>
    </message>
    <message>
        <source>Found NULL CFrame node</source>
        <translation>Leerer CFrame-Knoten gefunden</translation>
    </message>
    <message>
        <source>Found NULL CFrame element</source>
        <translation>Leeres CFrame-Element gefunden</translation>
    </message>
    <message>
        <source>The project</source>
        <translation>Das Projekt</translation>
    </message>
    <message>
        <source>Cannot open %1 as a project:
%2.</source>
        <translation>%1 kann nicht als Projekt geöffnet werden:
%2.</translation>
    </message>
    <message>
        <source>line %1, column %2: %3</source>
        <translation>Zeile %1, Spalte %2: %3</translation>
    </message>
    <message>
        <source>nested more than %1 levels</source>
        <translation>mehr als %1 Ebenen tief verschachtelt</translation>
    </message>
    <message>
        <source>a component holds more than %1 others</source>
        <translation>eine Komponente enthält mehr als %1 andere</translation>
    </message>
    <message>
        <source>not well-formed XML (%1)</source>
        <translation>kein wohlgeformtes XML (%1)</translation>
    </message>
    <message>
        <source>its root element is &quot;%1&quot;, not &quot;Runplan&quot;</source>
        <translation>sein Wurzelelement ist &quot;%1&quot;, nicht &quot;Runplan&quot;</translation>
    </message>
</context>
<context>
    <name>ReportPdf</name>
    <message>
        <source>Run diagram</source>
        <translation>Strangdiagramm</translation>
    </message>
    <message>
        <source>Run diagram, part %1 of %2</source>
        <translation>Strangdiagramm, Teil %1 von %2</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>Ergebnis: %1</translation>
    </message>
    <message>
        <source>Circuit totals</source>
        <translation>Summen des Stromkreises</translation>
    </message>
    <message>
        <source>Runs</source>
        <translation>Stränge</translation>
    </message>
    <message>
        <source>Bill of materials</source>
        <translation>Stückliste</translation>
    </message>
    <message>
        <source>Page %1 of %2</source>
        <translation>Seite %1 von %2</translation>
    </message>
</context>
<context>
    <name>Runplan</name>
    <message>
        <source>Vorlux Runplan Version  %1.%2.%3 Build %4-%5</source>
        <translation>Vorlux Runplan Version  %1.%2.%3 Build %4-%5</translation>
    </message>
    <message>
        <source>Database version %1</source>
        <translation>Database version %1</translation>
    </message>
    <message>
        <source>Create a new configuration</source>
        <translation>Eine neue Konfiguration anlegen</translation>
    </message>
    <message>
        <source>Open an exisiting configuration, checking for unsaved changes</source>
        <translation>Eine vorhandene Konfiguration öffnen, nicht gespeicherte Änderungen werden geprüft</translation>
    </message>
    <message>
        <source>Save the current configuration</source>
        <translation>Die aktuelle Konfiguration speichern</translation>
    </message>
    <message>
        <source>Save the current configuration to as a new filename</source>
        <translation>Die aktuelle Konfiguration unter einem neuen Dateinamen speichern</translation>
    </message>
    <message>
        <source>Delete the selected component and its children</source>
        <translation>Die ausgewählte Komponente und ihre Unterkomponenten löschen</translation>
    </message>
    <message>
        <source>Add the maximum number of fixtures starting from the selected component</source>
        <translation>Ab der ausgewählten Komponente die größtmögliche Zahl von Leuchten hinzufügen</translation>
    </message>
    <message>
        <source>Output maximum number of each fixture for each voltage it supports to a csv file</source>
        <translation>Die Höchstzahl jeder Leuchte bei jeder unterstützten Spannung in eine CSV-Datei schreiben</translation>
    </message>
    <message>
        <source>Output maximum number specified fixture for each voltage it supports to a csv file</source>
        <translation>Die Höchstzahl der gewählten Leuchte bei jeder unterstützten Spannung in eine CSV-Datei schreiben</translation>
    </message>
    <message>
        <source>Print...</source>
        <translation>Drucken …</translation>
    </message>
    <message>
        <source>Quit the application, checking for unsaved changes</source>
        <translation>Das Programm beenden, nicht gespeicherte Änderungen werden geprüft</translation>
    </message>
    <message>
        <source>Fixture combo mismatch (DL)!</source>
        <translation>Leuchtenauswahl stimmt nicht überein (DL)!</translation>
    </message>
    <message>
        <source>Select file</source>
        <translation>Datei auswählen</translation>
    </message>
    <message>
        <source>CSV File (*.csv);; All Files (*.*)</source>
        <translation>CSV-Datei (*.csv);; Alle Dateien (*.*)</translation>
    </message>
    <message>
        <source>Line Voltage</source>
        <translation>Netzspannung</translation>
    </message>
    <message>
        <source>Max Circuit Load</source>
        <translation>Max. Kreislast</translation>
    </message>
    <message>
        <source>Frequency</source>
        <translation>Frequenz</translation>
    </message>
    <message>
        <source>Controller</source>
        <translation>Controller</translation>
    </message>
    <message>
        <source>Enabler</source>
        <translation>Enabler</translation>
    </message>
    <message>
        <source>Fixture</source>
        <translation>Leuchte</translation>
    </message>
    <message>
        <source>Undo the last change to the configuration</source>
        <translation>Die letzte Änderung an der Konfiguration rückgängig machen</translation>
    </message>
    <message>
        <source>Redo the change undone last</source>
        <translation>Die zuletzt rückgängig gemachte Änderung wiederherstellen</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Bericht exportieren</translation>
    </message>
    <message>
        <source>PDF files (*.pdf)</source>
        <translation>PDF-Dateien (*.pdf)</translation>
    </message>
    <message>
        <source>Report written to %1</source>
        <translation>Bericht nach %1 geschrieben</translation>
    </message>
    <message>
        <source>Export Error</source>
        <translation>Fehler beim Exportieren</translation>
    </message>
    <message>
        <source>Cannot write %1:
%2</source>
        <translation>%1 kann nicht geschrieben werden:
%2</translation>
    </message>
    <message>
        <source>Export Bill of Materials</source>
        <translation>Stückliste exportieren</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV-Dateien (*.csv)</translation>
    </message>
    <message>
        <source>Bill of materials written to %1</source>
        <translation>Stückliste nach %1 geschrieben</translation>
    </message>
    <message>
        <source>the catalog %1 is not valid; nothing was exported.</source>
        <translation>der Katalog %1 ist ungültig; es wurde nichts exportiert.</translation>
    </message>
</context>
<context>
    <name>RunplanClass</name>
    <message>
        <source>Runplan</source>
        <translation>Runplan</translation>
    </message>
    <message>
        <source>Dynaline</source>
        <translation>Dynaline</translation>
    </message>
    <message>
        <source>Enabler:</source>
        <translation>Enabler:</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Fixture:</source>
        <translation>Leuchte:</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximieren</translation>
    </message>
    <message>
        <source>Add:</source>
        <translation>Hinzufügen:</translation>
    </message>
    <message>
        <source>Jumper</source>
        <translation>Jumper</translation>
    </message>
    <message>
        <source>Leader</source>
        <translation>Zuleitung</translation>
    </message>
    <message>
        <source>Receiver</source>
        <translation>Receiver</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
    <message>
        <source>Line Voltage:</source>
        <translation>Netzspannung:</translation>
    </message>
    <message>
        <source>100</source>
        <translation>100</translation>
    </message>
    <message>
        <source>120</source>
        <translation>120</translation>
    </message>
    <message>
        <source>208</source>
        <translation>208</translation>
    </message>
    <message>
        <source>220</source>
        <translation>220</translation>
    </message>
    <message>
        <source>240</source>
        <translation>240</translation>
    </message>
    <message>
        <source>277</source>
        <translation>277</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>VAC</source>
        <translation>VAC</translation>
    </message>
    <message>
        <source>Frequency:</source>
        <translation>Frequenz:</translation>
    </message>
    <message>
        <source>50 Hz</source>
        <translation>50 Hz</translation>
    </message>
    <message>
        <source>60 Hz</source>
        <translation>60 Hz</translation>
    </message>
    <message>
        <source>Max Circuit Load:</source>
        <translation>Max. Kreislast:</translation>
    </message>
    <message>
        <source>15</source>
        <translation>15</translation>
    </message>
    <message>
        <source>20</source>
        <translation>20</translation>
    </message>
    <message>
        <source>Amps</source>
        <translation>Ampere</translation>
    </message>
    <message>
        <source>(derated to xx amps)</source>
        <translation>(reduziert auf xx Ampere)</translation>
    </message>
    <message>
        <source>Zoom:</source>
        <translation>Zoom:</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>Controller:</translation>
    </message>
    <message>
        <source>Total Power:  </source>
        <translation>Gesamtleistung:  </translation>
    </message>
    <message>
        <source>watts  </source>
        <translation>Watt  </translation>
    </message>
    <message>
        <source>amps</source>
        <translation>Ampere</translation>
    </message>
    <message>
        <source>Calculate</source>
        <translation>Berechnen</translation>
    </message>
    <message>
        <source>Feedwise Length:</source>
        <translation>Feedwise-Länge:</translation>
    </message>
    <message>
        <source>ft</source>
        <translation>ft</translation>
    </message>
    <message>
        <source>Total Fixtures: 1</source>
        <translation>Leuchten gesamt: 1</translation>
    </message>
    <message>
        <source>Ribbon String</source>
        <translation>Ribbon String</translation>
    </message>
    <message>
        <source>Pixelon Fixture</source>
        <translation>Pixelon Fixture</translation>
    </message>
    <message>
        <source>Tintrail</source>
        <translation>Tintrail</translation>
    </message>
    <message>
        <source>Output Log</source>
        <translation>Ausgabeprotokoll</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Tool Bar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Create a new configuration</source>
        <translation>Eine neue Konfiguration anlegen</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>Open...</source>
        <translation>Öffnen …</translation>
    </message>
    <message>
        <source>Open an existing configuration</source>
        <translation>Eine vorhandene Konfiguration öffnen</translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation>Ctrl+O</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save the configuration</source>
        <translation>Die Konfiguration speichern</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Ctrl+S</translation>
    </message>
    <message>
        <source>Save As...</source>
        <translation>Speichern unter …</translation>
    </message>
    <message>
        <source>Save the configuration to a new file</source>
        <translation>Die Konfiguration in einer neuen Datei speichern</translation>
    </message>
    <message>
        <source>Ctrl+A</source>
        <translation>Ctrl+A</translation>
    </message>
    <message>
        <source>&amp;Print...</source>
        <translation>&amp;Drucken …</translation>
    </message>
    <message>
        <source>Ctrl+P</source>
        <translation>Ctrl+P</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Quit the application</source>
        <translation>Das Programm beenden</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Del</translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation>Ctrl+M</translation>
    </message>
    <message>
        <source>Maximize All Fixtures to File...</source>
        <translation>Alle Leuchten maximiert in Datei …</translation>
    </message>
    <message>
        <source>Maximize Current Fixture to File...</source>
        <translation>Aktuelle Leuchte maximiert in Datei …</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Line Color Key</source>
        <translation>Leitungsfarben</translation>
    </message>
    <message>
        <source>Toggle Line Color Key</source>
        <translation>Leitungsfarben ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Ctrl+K</source>
        <translation>Ctrl+K</translation>
    </message>
    <message>
        <source>About...</source>
        <translation>Über …</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Ausschneiden</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einfügen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Ctrl+X</source>
        <translation>Ctrl+X</translation>
    </message>
    <message>
        <source>Print...</source>
        <translation>Drucken …</translation>
    </message>
    <message>
        <source>Add Receiver</source>
        <translation>Receiver hinzufügen</translation>
    </message>
    <message>
        <source>Add Jumper</source>
        <translation>Jumper hinzufügen</translation>
    </message>
    <message>
        <source>Add Junction Box</source>
        <translation>Abzweigdose hinzufügen</translation>
    </message>
    <message>
        <source>Maximize All Fixures</source>
        <translation>Alle Leuchten maximieren</translation>
    </message>
    <message>
        <source>Show Voltages</source>
        <translation>Spannungen anzeigen</translation>
    </message>
    <message>
        <source>Write the voltage available at each component under its box</source>
        <translation>Die an jeder Komponente verfügbare Spannung unter ihr Feld schreiben</translation>
    </message>
    <message>
        <source>Export Report...</source>
        <translation>Bericht exportieren …</translation>
    </message>
    <message>
        <source>Export Bill of Materials...</source>
        <translation>Stückliste exportieren …</translation>
    </message>
</context>
<context>
    <name>SettingsDlg</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>HTTP Proxy</source>
        <translation>HTTP-Proxy</translation>
    </message>
    <message>
        <source>Use a proxy to access the internet</source>
        <translation>Für den Internetzugang einen Proxy verwenden</translation>
    </message>
    <message>
        <source>HTTP Proxy:</source>
        <translation>HTTP-Proxy:</translation>
    </message>
    <message>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>Automatically check for updates</source>
        <translation>Automatisch nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>Check Now</source>
        <translation>Jetzt prüfen</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Prüfen alle</translation>
    </message>
    <message>
        <source>days</source>
        <translation>Tage</translation>
    </message>
</context>
<context>
    <name>SplashScreen</name>
    <message>
        <source>Version: %1.%2.%3 %4-%5</source>
        <translation>Version: %1.%2.%3 %4-%5</translation>
    </message>
    <message>
        <source>%1 %2 Vorlux Lighting</source>
        <translation>%1 %2 Vorlux Lighting</translation>
    </message>
</context>
<context>
    <name>UpdateChecker</name>
    <message>
        <source>Update Error</source>
        <translation>Fehler bei der Aktualisierung</translation>
    </message>
    <message>
        <source>Unable to retrieve update file.</source>
        <translation>Die Aktualisierungsdatei konnte nicht abgerufen werden.</translation>
    </message>
    <message>
        <source>Update Available</source>
        <translation>Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>A newer version (%1) of this application is available.

Would you like to go to the download page?</source>
        <translation>Eine neuere Version (%1) dieses Programms ist verfügbar.

Möchten Sie die Download-Seite öffnen?</translation>
    </message>
    <message>
        <source>No Update Available</source>
        <translation>Keine Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>You have the latest version: v%1</source>
        <translation>Sie haben die neueste Version: v%1</translation>
    </message>
    <message>
        <source>The download page was not opened: &quot;%1&quot; is not an http or https address.</source>
        <translation>Die Download-Seite wurde nicht geöffnet: &quot;%1&quot; ist keine http- oder https-Adresse.</translation>
    </message>
    <message>
        <source>The download page was not opened: &quot;%1&quot; is not a valid web address.</source>
        <translation>Die Download-Seite wurde nicht geöffnet: &quot;%1&quot; ist keine gültige Webadresse.</translation>
    </message>
    <message>
        <source>Runplan</source>
        <translation>Runplan</translation>
    </message>
</context>
<context>
    <name>lineKeyUI</name>
    <message>
        <source>Form</source>
        <translation>Formular</translation>
    </message>
    <message>
        <source>Line Color Key</source>
        <translation>Leitungsfarben</translation>
    </message>
    <message>
        <source>Dynaline</source>
        <translation>Dynaline</translation>
    </message>
    <message>
        <source>Line Voltage</source>
        <translation>Netzspannung</translation>
    </message>
</context>
</TS>
