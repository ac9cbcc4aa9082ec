<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="eo">
<context>
    <name>AppTexts</name>
    <message>
        <source>Looking for new tables...</source>
        <translation>Sercxas novajn tabulojn...</translation>
    </message>
    <message numerus="yes">
        <source>%n new tables</source>
        <translation>
            <numerusform>%n nova tabulo</numerusform>
            <numerusform>%n novaj tabuloj</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>BrowserTexts</name>
    <message>
        <source>&amp;Purge Missing Tables</source>
        <translation>&amp;Forigi mankantajn</translation>
    </message>
</context>
</TS>
