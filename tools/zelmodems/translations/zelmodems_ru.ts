<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>Tool</name>
    <message>
        <source>dBm</source>
        <translation>дБм</translation>
    </message>
    <message>
        <source>dB</source>
        <translation>дБ</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 с</translation>
    </message>
    <message>
        <source>why it is (not) online: SIM, registration, network, signal, stores, next steps</source>
        <translation>почему модем (не) в сети: SIM, регистрация, сеть, сигнал, хранилища, что делать</translation>
    </message>
    <message>
        <source>what the SIM waits for, and the attempts left</source>
        <translation>чего ждёт SIM-карта и сколько осталось попыток</translation>
    </message>
    <message>
        <source>enter the SIM&apos;s PIN (or its PUK and a new PIN)</source>
        <translation>ввести PIN SIM-карты (или PUK и новый PIN)</translation>
    </message>
    <message>
        <source>change the SIM&apos;s PIN</source>
        <translation>сменить PIN SIM-карты</translation>
    </message>
    <message>
        <source>status, unlock or change-pin</source>
        <translation>status, unlock или change-pin</translation>
    </message>
    <message>
        <source>%1 needs a subcommand: %2</source>
        <translation>команде %1 нужна подкоманда: %2</translation>
    </message>
    <message>
        <source>not a modem: no answer to AT at 115200 baud (a modem that takes only another line speed: try zelmodems info --baud)</source>
        <translation>не модем: нет ответа на AT на скорости 115200 бод (если модем работает только на другой скорости, попробуйте zelmodems info --baud)</translation>
    </message>
    <message>
        <source>%1; next: %2</source>
        <translation>%1; что делать: %2</translation>
    </message>
    <message>
        <source> (roaming)</source>
        <translation> (роуминг)</translation>
    </message>
    <message>
        <source>a modem (%1) that cannot be used until its SIM is: %2</source>
        <translation>модем (%1), которым нельзя пользоваться, пока SIM-карта не готова: %2</translation>
    </message>
    <message>
        <source>a modem (%1) whose SIM names no operator (IMSI %2)</source>
        <translation>модем (%1), SIM-карта которого не называет оператора (IMSI %2)</translation>
    </message>
    <message>
        <source>a modem (%1, operator %2/%3) that the search did not take; see zelmodems info %4</source>
        <translation>модем (%1, оператор %2/%3), который поиск не взял; смотрите zelmodems info %4</translation>
    </message>
    <message>
        <source>Modems that need attention before they can be used:</source>
        <translation>Модемы, которым нужно внимание, прежде чем ими можно пользоваться:</translation>
    </message>
    <message>
        <source>no modem is ready to use; modems that need attention: %1 (above)</source>
        <translation>ни один модем не готов к работе; модемов, которым нужно внимание: %1 (выше)</translation>
    </message>
    <message>
        <source>STATE</source>
        <translation>СОСТОЯНИЕ</translation>
    </message>
    <message>
        <source>interrupted; ports released</source>
        <translation>прервано; порты освобождены</translation>
    </message>
    <message>
        <source>terminated; ports released</source>
        <translation>завершено; порты освобождены</translation>
    </message>
    <message>
        <source>hung up; ports released</source>
        <translation>терминал закрыт; порты освобождены</translation>
    </message>
    <message>
        <source>Opens the port, identifies the modem (name and dialect) and reads its
IMEI, the SIM&apos;s state and IMSI, MCC/MNC and operator (with the operator
table&apos;s entry), the registration and the serving cell, the signal, the
SIM id and the firmware revision. What the modem cannot tell is shown as
unknown, with the reason and the next step where there is one.</source>
        <translation>Открывает порт, опознаёт модем (имя и диалект) и читает его IMEI,
состояние SIM-карты и IMSI, MCC/MNC и оператора (с записью таблицы
операторов), регистрацию и обслуживающую соту, сигнал, идентификатор SIM
и версию прошивки. Чего модем сказать не может, показано как неизвестное,
с причиной и следующим шагом, где он есть.</translation>
    </message>
    <message>
        <source>%1 at %2 baud</source>
        <translation>%1 на скорости %2 бод</translation>
    </message>
    <message>
        <source>%1 (dialect %2)</source>
        <translation>%1 (диалект %2)</translation>
    </message>
    <message>
        <source>unknown (%1)</source>
        <translation>неизвестно (%1)</translation>
    </message>
    <message>
        <source>Prints the signal level in dBm (AT+CSQ), or &quot;unknown&quot; when the modem
cannot measure it (index 99), and the measures of AT+CESQ (or Huawei&apos;s
^HCSQ): RSRP and RSRQ on LTE, RSCP and Ec/No on UMTS.</source>
        <translation>Печатает уровень сигнала в дБм (AT+CSQ) или «неизвестно», когда модем
не может его измерить (индекс 99), и измерения AT+CESQ (или ^HCSQ
модемов Huawei): RSRP и RSRQ в LTE, RSCP и Ec/No в UMTS.</translation>
    </message>
    <message>
        <source>Prints the registration and, while registered, the serving cell&apos;s area
code and cell identity (AT+CREG, +CGREG, +CEREG: hexadecimal as the modem
gives them, decimal in brackets), and the neighbour cells of modems that
list them (Siemens/Cinterion: ^SMONC with levels from ^MONI/^MONP;
SIMCOM: the packet-domain cell of AT+CGREG).</source>
        <translation>Печатает регистрацию и, пока модем зарегистрирован, код зоны и
идентификатор обслуживающей соты (AT+CREG, +CGREG, +CEREG: в
шестнадцатеричном виде, как их даёт модем, в скобках десятичные), и
соседние соты модемов, которые их перечисляют (Siemens/Cinterion: ^SMONC
с уровнями из ^MONI/^MONP; SIMCOM: сота пакетного домена из AT+CGREG).</translation>
    </message>
    <message>
        <source>the modem is not registered (%1), so it has no cell</source>
        <translation>модем не зарегистрирован (%1), поэтому соты у него нет</translation>
    </message>
    <message>
        <source>the modem did not report its registration, so its cell is unknown: %1</source>
        <translation>модем не сообщил о регистрации, поэтому его сота неизвестна: %1</translation>
    </message>
    <message>
        <source>%1 (national; the country code is not known)</source>
        <translation>%1 (национальный; код страны неизвестен)</translation>
    </message>
    <message>
        <source>%1 (national %2)</source>
        <translation>%1 (национальный %2)</translation>
    </message>
    <message>
        <source>no modem answers on %1 at %2 baud: nothing came back to AT. Check that the modem is powered and that %1 is its AT port (a modem may have several ports), or try another --baud</source>
        <translation>на %1 на скорости %2 бод модем не отвечает: на AT ничего не пришло. Проверьте, что модем включён и что %1 — его порт для AT-команд (у модема бывает несколько портов), или попробуйте другой --baud</translation>
    </message>
    <message>
        <source>cannot read the SIM&apos;s operator codes on %1: %2%3</source>
        <translation>не удаётся прочитать коды оператора SIM-карты на %1: %2%3</translation>
    </message>
    <message>
        <source>; next: %1</source>
        <translation>; что делать: %1</translation>
    </message>
    <message>
        <source>cannot read the SIM&apos;s operator codes on %1: the IMSI %2 names no operator</source>
        <translation>не удаётся прочитать коды оператора SIM-карты на %1: IMSI %2 не называет оператора</translation>
    </message>
    <message>
        <source>attempts left: %1</source>
        <translation>осталось попыток: %1</translation>
    </message>
    <message>
        <source>2G (GSM)</source>
        <translation>2G (GSM)</translation>
    </message>
    <message>
        <source>3G (UMTS)</source>
        <translation>3G (UMTS)</translation>
    </message>
    <message>
        <source>4G (LTE)</source>
        <translation>4G (LTE)</translation>
    </message>
    <message>
        <source>5G (NR)</source>
        <translation>5G (NR)</translation>
    </message>
    <message>
        <source>no SIM card in the modem</source>
        <translation>в модеме нет SIM-карты</translation>
    </message>
    <message>
        <source>insert a SIM (with the modem unplugged), then: %1</source>
        <translation>вставьте SIM-карту (отключив модем), затем: %1</translation>
    </message>
    <message>
        <source>SIM PIN required</source>
        <translation>нужен PIN SIM-карты</translation>
    </message>
    <message>
        <source>SIM PIN required (%1)</source>
        <translation>нужен PIN SIM-карты (%1)</translation>
    </message>
    <message>
        <source>the PIN is blocked; the SIM asks for its PUK</source>
        <translation>PIN заблокирован; SIM-карта просит PUK</translation>
    </message>
    <message>
        <source>the PIN is blocked; the SIM asks for its PUK (%1)</source>
        <translation>PIN заблокирован; SIM-карта просит PUK (%1)</translation>
    </message>
    <message>
        <source>find the PUK on the SIM&apos;s card or ask the operator, then: %1</source>
        <translation>найдите PUK на пластиковой карте SIM или узнайте его у оператора, затем: %1</translation>
    </message>
    <message>
        <source>enter it with a phone; the modem&apos;s own services need only the PIN</source>
        <translation>введите его в телефоне; самому модему нужен только PIN</translation>
    </message>
    <message>
        <source>ask the modem&apos;s seller for its unlock code, or use the SIM it was sold with</source>
        <translation>попросите у продавца модема код разблокировки или используйте SIM-карту, с которой он продан</translation>
    </message>
    <message>
        <source>try the SIM in another modem or phone; if it fails there too, ask the operator for a new one</source>
        <translation>попробуйте SIM-карту в другом модеме или телефоне; если и там не работает, попросите у оператора новую</translation>
    </message>
    <message>
        <source>wait a few seconds, then: %1</source>
        <translation>подождите несколько секунд, затем: %1</translation>
    </message>
    <message>
        <source>the SIM&apos;s state is unknown: %1</source>
        <translation>состояние SIM-карты неизвестно: %1</translation>
    </message>
    <message>
        <source>ask the operator whether the SIM&apos;s contract is active and allows this network</source>
        <translation>узнайте у оператора, действует ли договор SIM-карты и разрешает ли он эту сеть</translation>
    </message>
    <message>
        <source>wait a minute; if it stays so, check the antenna and the coverage, then: %1</source>
        <translation>подождите минуту; если ничего не изменится, проверьте антенну и покрытие, затем: %1</translation>
    </message>
    <message>
        <source>not registered, and not searching</source>
        <translation>не зарегистрирован и сеть не ищет</translation>
    </message>
    <message>
        <source>the radio may be off or the network chosen by hand: AT+CFUN=1 turns the radio on, AT+COPS=0 chooses automatically</source>
        <translation>радиочасть может быть выключена или сеть выбрана вручную: AT+CFUN=1 включает радиочасть, AT+COPS=0 включает автоматический выбор</translation>
    </message>
    <message>
        <source>the registration is unknown</source>
        <translation>регистрация неизвестна</translation>
    </message>
    <message>
        <source>check the antenna and the coverage, then: %1</source>
        <translation>проверьте антенну и покрытие, затем: %1</translation>
    </message>
    <message>
        <source>the network does not accept this SIM: ask the operator</source>
        <translation>сеть не принимает эту SIM-карту: обратитесь к оператору</translation>
    </message>
    <message>
        <source>the modem measures no signal</source>
        <translation>модем не измеряет сигнал</translation>
    </message>
    <message>
        <source>check that the antenna is connected</source>
        <translation>проверьте, подключена ли антенна</translation>
    </message>
    <message>
        <source>weak signal (%1 dBm)</source>
        <translation>слабый сигнал (%1 дБм)</translation>
    </message>
    <message>
        <source>move the modem or its antenna (a window, higher up, a USB extension cable)</source>
        <translation>переставьте модем или его антенну (к окну, повыше, на USB-удлинитель)</translation>
    </message>
    <message>
        <source>the SMS store is full: new messages are refused until one is deleted</source>
        <translation>хранилище SMS заполнено: новые сообщения не принимаются, пока какое-нибудь не удалено</translation>
    </message>
    <message>
        <source>read and delete them: %1</source>
        <translation>прочитайте и удалите их: %1</translation>
    </message>
    <message>
        <source>SIM</source>
        <translation>SIM</translation>
    </message>
    <message>
        <source> (roaming: the network is not the SIM&apos;s own)</source>
        <translation> (роуминг: сеть не своя для SIM-карты)</translation>
    </message>
    <message>
        <source>Registration</source>
        <translation>Регистрация</translation>
    </message>
    <message>
        <source>Technology</source>
        <translation>Технология</translation>
    </message>
    <message>
        <source>LAC %1, CID %2</source>
        <translation>LAC %1, CID %2</translation>
    </message>
    <message>
        <source>Measures</source>
        <translation>Измерения</translation>
    </message>
    <message>
        <source>%1: %2 of %3</source>
        <translation>%1: %2 из %3</translation>
    </message>
    <message>
        <source> (full)</source>
        <translation> (заполнено)</translation>
    </message>
    <message>
        <source>SMS stores</source>
        <translation>Хранилища SMS</translation>
    </message>
    <message>
        <source>What keeps it from working, and what to do:</source>
        <translation>Что мешает работе и что делать:</translation>
    </message>
    <message>
        <source>next:</source>
        <translation>что делать:</translation>
    </message>
    <message>
        <source>no %1 given (type it when asked, or give it on standard input or with --pin-file); nothing was sent</source>
        <translation>%1 не введён (введите его, когда спросят, или подайте на стандартный ввод или через --pin-file); ничего не отправлено</translation>
    </message>
    <message>
        <source>the new PIN again</source>
        <translation>новый PIN ещё раз</translation>
    </message>
    <message>
        <source>the two new PINs differ; nothing was sent</source>
        <translation>два новых PIN не совпадают; ничего не отправлено</translation>
    </message>
    <message>
        <source>--record would write the SIM&apos;s codes into the recording; record another command</source>
        <translation>--record записал бы коды SIM-карты в запись; записывайте другую команду</translation>
    </message>
    <message>
        <source>Read the codes from FILE, one a line in the order they are asked for (without it: typed without echo at a terminal, or standard input).</source>
        <translation>Читать коды из FILE, по одному в строке, в порядке запроса (без этого: ввод без отображения в терминале или стандартный ввод).</translation>
    </message>
    <message>
        <source>Try the code even when the modem reports one attempt left (a wrong code then blocks the SIM).</source>
        <translation>Пробовать код, даже когда модем сообщает об одной оставшейся попытке (неверный код тогда заблокирует SIM-карту).</translation>
    </message>
    <message>
        <source> (--last-attempt tries it)</source>
        <translation> (--last-attempt пробует его)</translation>
    </message>
    <message>
        <source>; the PIN is now blocked: zelmodems sim unlock --puk %1</source>
        <translation>; теперь PIN заблокирован: zelmodems sim unlock --puk %1</translation>
    </message>
    <message>
        <source>Answers &quot;why is it not online?&quot; in one screen: the SIM (and the attempts
left for its PIN), the registration and roaming, the network, the access
technology, the signal with a word for its quality, how full the SMS
stores are, and for each problem found the next step to take.</source>
        <translation>Отвечает на вопрос «почему модем не в сети?» на одном экране: SIM-карта
(и оставшиеся попытки ввода PIN), регистрация и роуминг, сеть, технология
доступа, сигнал с оценкой качества, заполненность хранилищ SMS, а для
каждой найденной проблемы — следующий шаг.</translation>
    </message>
    <message>
        <source>Nothing keeps it from working.</source>
        <translation>Работе ничто не мешает.</translation>
    </message>
    <message>
        <source>Prints what the SIM waits for (AT+CPIN?: ready, PIN, PUK, no SIM, ...) and
the attempts left for the PIN and the PUK where the modem tells them.</source>
        <translation>Печатает, чего ждёт SIM-карта (AT+CPIN?: готова, PIN, PUK, нет SIM, ...), и
оставшиеся попытки ввода PIN и PUK, если модем их сообщает.</translation>
    </message>
    <message>
        <source>Enters the SIM&apos;s PIN; with --puk, the PUK and a new PIN. The codes are
typed without echo at a terminal, or read from standard input or from
--pin-file, never from the command line. Nothing is sent when the modem
reports one attempt left, unless --last-attempt; nothing is retried.</source>
        <translation>Вводит PIN SIM-карты; с --puk — PUK и новый PIN. Коды вводятся без
отображения в терминале или читаются со стандартного ввода или из
--pin-file, но никогда не из командной строки. Когда модем сообщает об
одной оставшейся попытке, ничего не отправляется без --last-attempt;
повторных попыток нет.</translation>
    </message>
    <message>
        <source>The PIN is blocked: enter the PUK and a new PIN.</source>
        <translation>PIN заблокирован: ввести PUK и новый PIN.</translation>
    </message>
    <message>
        <source>the SIM waits for no %1 (it is &quot;%2&quot;); nothing was sent</source>
        <translation>SIM-карта не ждёт %1 (её состояние: «%2»); ничего не отправлено</translation>
    </message>
    <message>
        <source>: zelmodems sim unlock --puk %1</source>
        <translation>: zelmodems sim unlock --puk %1</translation>
    </message>
    <message>
        <source>the new PIN</source>
        <translation>новый PIN</translation>
    </message>
    <message>
        <source>The PUK was accepted and the new PIN set.</source>
        <translation>PUK принят, новый PIN установлен.</translation>
    </message>
    <message>
        <source>The PIN was accepted.</source>
        <translation>PIN принят.</translation>
    </message>
    <message>
        <source>Changes the PIN of a SIM that is ready (AT+CPWD): the PIN now, then the new
one, typed without echo at a terminal (the new one twice), or read from
standard input or --pin-file. A wrong PIN costs an attempt.</source>
        <translation>Меняет PIN готовой SIM-карты (AT+CPWD): сначала нынешний PIN, затем новый;
вводятся без отображения в терминале (новый дважды) или читаются со
стандартного ввода или из --pin-file. Неверный PIN стоит попытки.</translation>
    </message>
    <message>
        <source>the PIN now</source>
        <translation>нынешний PIN</translation>
    </message>
    <message>
        <source>The PIN was changed.</source>
        <translation>PIN изменён.</translation>
    </message>
    <message>
        <source>No messages.</source>
        <translation>Сообщений нет.</translation>
    </message>
    <message>
        <source>no message at index %1 (+CMS ERROR: 321, %2; zelmodems sms list shows the indexes)</source>
        <translation>сообщения с номером %1 нет (+CMS ERROR: 321, %2; номера показывает zelmodems sms list)</translation>
    </message>
    <message>
        <source>message %1 was not deleted: %2</source>
        <translation>сообщение %1 не удалено: %2</translation>
    </message>
    <message>
        <source>Unread messages listed: %1; the modem now marks them read.</source>
        <translation>Показано непрочитанных сообщений: %1; модем теперь помечает их прочитанными.</translation>
    </message>
    <message>
        <source>The store is full: new messages are refused until some are deleted (zelmodems sms take %1, or sms delete).</source>
        <translation>Хранилище заполнено: новые сообщения не принимаются, пока часть не удалена (zelmodems sms take %1 или sms delete).</translation>
    </message>
    <message>
        <source>no serial modem yet: waiting for one to be plugged in</source>
        <translation>последовательных модемов пока нет: ждём подключения</translation>
    </message>
    <message>
        <source>from %1: %2</source>
        <translation>от %1: %2</translation>
    </message>
    <message>
        <source> (stored at %1)</source>
        <translation> (сохранено под номером %1)</translation>
    </message>
    <message>
        <source>message %1 to %2: status %3</source>
        <translation>сообщение %1 для %2: состояние %3</translation>
    </message>
    <message>
        <source> (a menu: answer with zelmodems ussd)</source>
        <translation> (меню: ответьте командой zelmodems ussd)</translation>
    </message>
    <message>
        <source>, area %1, cell %2</source>
        <translation>, зона %1, сота %2</translation>
    </message>
    <message>
        <source>incoming call</source>
        <translation>входящий вызов</translation>
    </message>
    <message>
        <source>the port went away (unplugged or reset); waiting for it to return</source>
        <translation>порт пропал (отключён или перезапущен); ждём его возвращения</translation>
    </message>
    <message>
        <source>Prints the modems&apos; events as they happen (new messages, delivery reports,
network USSD, registration, signal, calls, the port going and returning),
one a line: time, port, event, details. Without ports it watches every
serial modem present and every one plugged in later. Runs until Ctrl-C.</source>
        <translation>Печатает события модемов по мере их появления (новые сообщения, отчёты о
доставке, USSD от сети, регистрация, сигнал, вызовы, пропажа и возвращение
порта), по одному в строке: время, порт, событие, подробности. Без портов
следит за всеми последовательными модемами, имеющимися и подключёнными
позже. Работает до Ctrl-C.</translation>
    </message>
    <message>
        <source>Ports to watch (device paths or bare names).</source>
        <translation>Порты для наблюдения (пути устройств или имена).</translation>
    </message>
    <message>
        <source>Watch a folder of links to serial devices (as made by modemsim --link-dir) instead of the system&apos;s.</source>
        <translation>Следить за папкой ссылок на последовательные устройства (как их делает modemsim --link-dir) вместо устройств системы.</translation>
    </message>
    <message>
        <source>Read the signal every this many seconds (default: only when the modem reports it).</source>
        <translation>Читать сигнал каждые столько секунд (по умолчанию: только когда модем сообщает его сам).</translation>
    </message>
    <message>
        <source>--baud takes a line speed and --poll-signal a number of seconds</source>
        <translation>--baud принимает скорость линии, а --poll-signal — число секунд</translation>
    </message>
    <message>
        <source>none of the ports is there yet: waiting for it</source>
        <translation>ни одного из портов пока нет: ждём</translation>
    </message>
    <message>
        <source>The network&apos;s menu waited for an answer; it was closed (AT+CUSD=2).</source>
        <translation>Меню сети ждало ответа; оно закрыто (AT+CUSD=2).</translation>
    </message>
    <message>
        <source>The network&apos;s menu waited for an answer; closing it failed: %1</source>
        <translation>Меню сети ждало ответа; закрыть его не удалось: %1</translation>
    </message>
    <message>
        <source>Sends a USSD code and prints the network&apos;s reply (awaited up to about
20 s). Codes are written as on a phone: *100#. When the reply is a menu
that waits for an answer, the answer is asked for on a terminal, or taken
from --reply; a menu left without an answer is closed, and that is said.</source>
        <translation>Отправляет код USSD и печатает ответ сети (ожидание до 20 с). Коды
пишутся как на телефоне: *100#. Если ответ — меню, ждущее ответа, ответ
спрашивается в терминале или берётся из --reply; меню, оставленное без
ответа, закрывается, и об этом сообщается.</translation>
    </message>
    <message>
        <source>An answer to the network&apos;s menu, in order (repeat it: --reply 1 --reply 3).</source>
        <translation>Ответ на меню сети, по порядку (повторяйте: --reply 1 --reply 3).</translation>
    </message>
    <message>
        <source>Reply:</source>
        <translation>Ответ:</translation>
    </message>
    <message>
        <source>Answer (an empty line closes the menu): </source>
        <translation>Ваш ответ (пустая строка закрывает меню): </translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>Ваш ответ</translation>
    </message>
    <message>
        <source>The session ended before these answers were used: %1</source>
        <translation>Сеанс завершился раньше, чем были использованы эти ответы: %1</translation>
    </message>
    <message>
        <source>print the modems&apos; events as they happen, until Ctrl-C</source>
        <translation>печатать события модемов по мере их появления, до Ctrl-C</translation>
    </message>
    <message>
        <source>Show this help.</source>
        <translation>Показать эту справку.</translation>
    </message>
    <message>
        <source>Print the result as JSON.</source>
        <translation>Вывести результат в JSON.</translation>
    </message>
    <message>
        <source>Show the library&apos;s log (the AT dialogue) on standard error.</source>
        <translation>Показывать журнал библиотеки (диалог AT-команд) в стандартном потоке ошибок.</translation>
    </message>
    <message>
        <source>The modem&apos;s serial port: a device path (/dev/ttyUSB2) or a bare name (ttyUSB2).</source>
        <translation>Последовательный порт модема: путь к устройству (/dev/ttyUSB2) или просто имя (ttyUSB2).</translation>
    </message>
    <message>
        <source>Line speed (default 115200).</source>
        <translation>Скорость линии (по умолчанию 115200).</translation>
    </message>
    <message>
        <source>Attempts to open the port and get an answer (default 3; a silent port costs about 6 s each).</source>
        <translation>Попыток открыть порт и получить ответ (по умолчанию 3; молчащий порт отнимает около 6 с на каждую).</translation>
    </message>
    <message>
        <source>Write the whole dialogue with the modem (bytes, timings, line speeds) to &lt;file&gt;; modemsim --replay plays it back.</source>
        <translation>Записать весь диалог с модемом (байты, время, скорости линии) в &lt;file&gt;; modemsim --replay воспроизводит его.</translation>
    </message>
    <message>
        <source> (see zelmodems %1 --help)</source>
        <translation> (см. zelmodems %1 --help)</translation>
    </message>
    <message>
        <source>%1 is missing</source>
        <translation>не указан %1</translation>
    </message>
    <message>
        <source>unexpected argument &quot;%1&quot;</source>
        <translation>лишний аргумент «%1»</translation>
    </message>
    <message>
        <source>%1 is empty</source>
        <translation>%1 пуст</translation>
    </message>
    <message>
        <source>--baud takes a positive number, not &quot;%1&quot;</source>
        <translation>--baud принимает положительное число, а не «%1»</translation>
    </message>
    <message>
        <source>--attempts takes a number from 1 to 10, not &quot;%1&quot;</source>
        <translation>--attempts принимает число от 1 до 10, а не «%1»</translation>
    </message>
    <message>
        <source>search ports for modems (all serial ports, or the given ones)</source>
        <translation>искать модемы на портах (на всех последовательных или на указанных)</translation>
    </message>
    <message>
        <source>identify the modem on a port: make, IMEI, SIM, operator, signal, cell</source>
        <translation>опознать модем на порту: марка, IMEI, SIM, оператор, сигнал, сота</translation>
    </message>
    <message>
        <source>signal level in dBm</source>
        <translation>уровень сигнала в дБм</translation>
    </message>
    <message>
        <source>serving cell (and neighbour cells where the modem lists them)</source>
        <translation>обслуживающая сота (и соседние, если модем их сообщает)</translation>
    </message>
    <message>
        <source>the SIM&apos;s operator: MCC/MNC, network name, operator table entry</source>
        <translation>оператор SIM-карты: MCC/MNC, название сети, запись таблицы операторов</translation>
    </message>
    <message>
        <source>ask the account balance by USSD</source>
        <translation>запросить баланс счёта по USSD</translation>
    </message>
    <message>
        <source>send a USSD code and print the network&apos;s reply</source>
        <translation>отправить USSD-код и вывести ответ сети</translation>
    </message>
    <message>
        <source>ask the operator for the SIM&apos;s own number</source>
        <translation>узнать у оператора собственный номер SIM-карты</translation>
    </message>
    <message>
        <source>list the stored SMS (nothing is deleted)</source>
        <translation>показать сохранённые SMS (ничего не удаляется)</translation>
    </message>
    <message>
        <source>delete stored SMS by index</source>
        <translation>удалить сохранённые SMS по номерам</translation>
    </message>
    <message>
        <source>print the stored SMS that read whole, then delete those</source>
        <translation>вывести сохранённые SMS, прочитанные целиком, затем удалить их</translation>
    </message>
    <message>
        <source>send an SMS, confirmed by the modem</source>
        <translation>отправить SMS с подтверждением от модема</translation>
    </message>
    <message>
        <source>build SMS-SUBMIT PDUs for a text (no modem needed)</source>
        <translation>построить PDU SMS-SUBMIT для текста (модем не нужен)</translation>
    </message>
    <message>
        <source>explain an SMS PDU or a user-data header (no modem needed)</source>
        <translation>разобрать PDU SMS или заголовок пользовательских данных (модем не нужен)</translation>
    </message>
    <message>
        <source>stop dialers and run wvdialconf to write the dialer&apos;s search file</source>
        <translation>остановить дозвонщики и запустить wvdialconf, чтобы записать файл поиска дозвонщика</translation>
    </message>
    <message>
        <source>all of it against simulated modems (no hardware needed)</source>
        <translation>всё это на имитируемых модемах (оборудование не нужно)</translation>
    </message>
    <message>
        <source>
Every command takes --help, --json (machine-readable output) and --verbose
(the library&apos;s AT dialogue on standard error). Commands that talk to a modem
take the port (/dev/ttyUSB2 or ttyUSB2), --baud (default 115200), --attempts
and --record FILE (the whole dialogue, for modemsim --replay FILE).

Exit status: 0 success, 1 failure (no such port, no modem, the modem or the
network refused), 2 bad arguments, 130/143 interrupted (ports released).
Messages go to standard error. See also: man zelmodems.
</source>
        <translation>
Каждая команда принимает --help, --json (вывод для программ) и --verbose
(диалог AT-команд библиотеки в стандартном потоке ошибок). Команды, которые
обращаются к модему, принимают порт (/dev/ttyUSB2 или ttyUSB2), --baud
(по умолчанию 115200), --attempts и --record FILE (весь диалог, для
modemsim --replay FILE).

Код возврата: 0 успех, 1 неудача (нет такого порта, нет модема, отказ модема
или сети), 2 неверные аргументы, 130/143 прервано (порты освобождены).
Сообщения выводятся в стандартный поток ошибок. См. также: man zelmodems.
</translation>
    </message>
    <message>
        <source>no command given (see zelmodems --help)</source>
        <translation>не указана команда (см. zelmodems --help)</translation>
    </message>
    <message>
        <source>list, delete, take or send</source>
        <translation>list, delete, take или send</translation>
    </message>
    <message>
        <source>encode or explain</source>
        <translation>encode или explain</translation>
    </message>
    <message>
        <source>unknown command &quot;%1 %2&quot; (see zelmodems --help)</source>
        <translation>неизвестная команда «%1 %2» (см. zelmodems --help)</translation>
    </message>
    <message>
        <source>unknown command &quot;%1&quot; (see zelmodems --help)</source>
        <translation>неизвестная команда «%1» (см. zelmodems --help)</translation>
    </message>
    <message>
        <source>Starts simulated modems in this process and runs, as a user would, find
on all of them, then info, balance, own-number and sms list on each modem
found. No hardware is needed. The modems: a Huawei E3372 USB stick with
three serial interfaces (ttyUSB0-2) and a MegaFon SIM, and a SIMCOM
SIM7600 on a serial line (ttyS1) with a Beeline SIM. They live on
pseudo-terminals linked in a scratch folder, which goes when the demo
ends; the machine&apos;s own serial ports are not touched.</source>
        <translation>Запускает имитируемые модемы в этом процессе и выполняет, как пользователь,
find на всех, затем info, balance, own-number и sms list на каждом найденном.
Оборудование не нужно. Модемы: USB-модем Huawei E3372 с тремя
последовательными интерфейсами (ttyUSB0-2) и SIM-картой МегаФон и SIMCOM
SIM7600 на последовательной линии (ttyS1) с SIM-картой Билайн. Они работают
на псевдотерминалах со ссылками во временной папке, которая удаляется по
окончании; собственные последовательные порты машины не затрагиваются.</translation>
    </message>
    <message>
        <source>cannot start the simulated modems: %1</source>
        <translation>не удаётся запустить имитируемые модемы: %1</translation>
    </message>
    <message>
        <source>%1 of %2 demo steps failed</source>
        <translation>не удалось %1 из %2 шагов демонстрации</translation>
    </message>
    <message>
        <source>
Demo finished: %1 commands, all succeeded.</source>
        <translation>
Демонстрация окончена: %1 команд, все успешно.</translation>
    </message>
    <message>
        <source>cannot link %1 to %2</source>
        <translation>не удаётся связать %1 с %2</translation>
    </message>
    <message>
        <source>cannot create a scratch folder: %1</source>
        <translation>не удаётся создать временную папку: %1</translation>
    </message>
    <message>
        <source>cannot create the link %1</source>
        <translation>не удаётся создать ссылку %1</translation>
    </message>
    <message>
        <source>SIMCOM SIM7600E-H on a serial line, Beeline SIM</source>
        <translation>SIMCOM SIM7600E-H на последовательной линии, SIM-карта Билайн</translation>
    </message>
    <message>
        <source>no such device</source>
        <translation>нет такого устройства</translation>
    </message>
    <message>
        <source>in use by another program (%1)</source>
        <translation>занят другой программой (%1)</translation>
    </message>
    <message>
        <source>cannot be opened as a serial port: %1</source>
        <translation>не открывается как последовательный порт: %1</translation>
    </message>
    <message>
        <source>the device disappeared</source>
        <translation>устройство пропало</translation>
    </message>
    <message>
        <source>not a modem: no answer to AT at 115200 baud%1 (a modem that takes only another line speed: try zelmodems info --baud)</source>
        <translation>не модем: нет ответа на AT на скорости 115200%1 (модем, работающий только на другой скорости: попробуйте zelmodems info --baud)</translation>
    </message>
    <message>
        <source>a modem (%1) without SIM or operator: no answer to AT+CIMI</source>
        <translation>модем (%1) без SIM-карты или оператора: нет ответа на AT+CIMI</translation>
    </message>
    <message>
        <source>a modem (%1) without SIM or operator: AT+CIMI answered &quot;%2&quot;</source>
        <translation>модем (%1) без SIM-карты или оператора: на AT+CIMI ответ «%2»</translation>
    </message>
    <message>
        <source>a modem (%1) whose SIM&apos;s operator cannot be read (IMSI %2)</source>
        <translation>модем (%1), оператор SIM-карты которого не читается (IMSI %2)</translation>
    </message>
    <message>
        <source>a modem (%1, operator %2/%3) that the search did not take; see zelmodems info
%4</source>
        <translation>модем (%1, оператор %2/%3), не принятый поиском; см. zelmodems info
%4</translation>
    </message>
    <message>
        <source>Searches the given ports, or every serial port of the system, for modems:
all ports are probed at once; each probe finds the fastest line speed the
modem answers at, reads the IMEI and the SIM&apos;s operator, and makes the
dial-up connection record. The interfaces of one USB modem are merged
into one record (data port and command port). Device paths the system
does not list (a modemsim pseudo-terminal, a link) are probed as plain
serial ports. On a terminal, progress is shown while the probes run.</source>
        <translation>Ищет модемы на указанных портах или на всех последовательных портах системы:
все порты опрашиваются одновременно; каждый опрос находит наибольшую
скорость, на которой отвечает модем, читает IMEI и оператора SIM-карты и
составляет запись коммутируемого соединения. Интерфейсы одного USB-модема
объединяются в одну запись (порт данных и командный порт). Пути устройств,
которых нет в списке системы (псевдотерминал modemsim, ссылка), опрашиваются
как обычные последовательные порты. На терминале во время опроса виден ход работы.</translation>
    </message>
    <message>
        <source>Ports to search (ttyUSB0, /dev/ttyS1, ...); default: all serial ports.</source>
        <translation>Порты для поиска (ttyUSB0, /dev/ttyS1, ...); по умолчанию все последовательные порты.</translation>
    </message>
    <message>
        <source>another interface of the modem on %1 (IMEI %2)</source>
        <translation>другой интерфейс модема на %1 (IMEI %2)</translation>
    </message>
    <message>
        <source>Ports without a modem:</source>
        <translation>Порты без модема:</translation>
    </message>
    <message>
        <source>%1 (%2 port(s) probed in %3)</source>
        <translation>%1 (опрошено портов: %2 за %3)</translation>
    </message>
    <message>
        <source>no modem found</source>
        <translation>модем не найден</translation>
    </message>
    <message>
        <source>PORT</source>
        <translation>ПОРТ</translation>
    </message>
    <message>
        <source>CMD PORT</source>
        <translation>КОМ. ПОРТ</translation>
    </message>
    <message>
        <source>BAUD</source>
        <translation>СКОРОСТЬ</translation>
    </message>
    <message>
        <source>IMEI</source>
        <translation>IMEI</translation>
    </message>
    <message>
        <source>CONNECTION</source>
        <translation>СОЕДИНЕНИЕ</translation>
    </message>
    <message>
        <source>USER</source>
        <translation>ПОЛЬЗОВАТЕЛЬ</translation>
    </message>
    <message>
        <source>BALANCE CODE</source>
        <translation>КОД БАЛАНСА</translation>
    </message>
    <message>
        <source>INIT</source>
        <translation>ИНИЦИАЛИЗАЦИЯ</translation>
    </message>
    <message>
        <source>%1 modem(s) on %2 port(s), probed in %3.</source>
        <translation>Модемов: %1 на портах: %2, опрошено за %3.</translation>
    </message>
    <message>
        <source>%1 disappeared during the command (%2)</source>
        <translation>%1 пропал во время команды (%2)</translation>
    </message>
    <message>
        <source>Table entry</source>
        <translation>Запись таблицы</translation>
    </message>
    <message>
        <source>Balance code</source>
        <translation>Код баланса</translation>
    </message>
    <message>
        <source>Own number</source>
        <translation>Свой номер</translation>
    </message>
    <message>
        <source>the reply comes by SMS</source>
        <translation>ответ приходит по SMS</translation>
    </message>
    <message>
        <source>USSD reply</source>
        <translation>ответ USSD</translation>
    </message>
    <message>
        <source>PPP user</source>
        <translation>Пользователь PPP</translation>
    </message>
    <message>
        <source>Init line</source>
        <translation>Строка иниц.</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Сеть</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>неизвестно</translation>
    </message>
    <message>
        <source>excellent</source>
        <translation>отличный</translation>
    </message>
    <message>
        <source>good</source>
        <translation>хороший</translation>
    </message>
    <message>
        <source>fair</source>
        <translation>средний</translation>
    </message>
    <message>
        <source>poor</source>
        <translation>слабый</translation>
    </message>
    <message>
        <source>%1 dBm (%2)</source>
        <translation>%1 дБм (%2)</translation>
    </message>
    <message>
        <source>Signal</source>
        <translation>Сигнал</translation>
    </message>
    <message>
        <source>unknown (the modem reports no signal)</source>
        <translation>неизвестно (модем не сообщает сигнал)</translation>
    </message>
    <message>
        <source>Reply</source>
        <translation>Ответ</translation>
    </message>
    <message>
        <source>Serving cell</source>
        <translation>Сота</translation>
    </message>
    <message>
        <source>cannot list the stored messages: %1</source>
        <translation>не удаётся получить список сохранённых сообщений: %1</translation>
    </message>
    <message>
        <source>the request %1 did not go through: %2</source>
        <translation>запрос %1 не прошёл: %2</translation>
    </message>
    <message>
        <source>no answer from the modem</source>
        <translation>нет ответа от модема</translation>
    </message>
    <message>
        <source>(the operator&apos;s message %1 stays on the modem: %2)</source>
        <translation>(сообщение оператора %1 остаётся в модеме: %2)</translation>
    </message>
    <message>
        <source>no message with a telephone number came within %1 s of %2</source>
        <translation>за %1 с после %2 не пришло сообщение с номером телефона</translation>
    </message>
    <message>
        <source>Opens the port, identifies the modem (name and dialect) and reads its
IMEI, the SIM&apos;s IMSI, MCC/MNC and operator (with the operator table&apos;s
entry), the signal level, the serving cell, the SIM id and the firmware
revision. Queries the modem cannot answer are shown as unknown.</source>
        <translation>Открывает порт, опознаёт модем (имя и диалект) и читает его IMEI, IMSI
SIM-карты, MCC/MNC и оператора (с записью таблицы операторов), уровень
сигнала, обслуживающую соту, идентификатор SIM-карты и версию прошивки.
На что модем ответить не может, показано как «неизвестно».</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Порт</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Модем</translation>
    </message>
    <message>
        <source>IMSI</source>
        <translation>IMSI</translation>
    </message>
    <message>
        <source>MCC/MNC</source>
        <translation>MCC/MNC</translation>
    </message>
    <message>
        <source>none for %1</source>
        <translation>нет для %1</translation>
    </message>
    <message>
        <source>SIM id</source>
        <translation>ID SIM</translation>
    </message>
    <message>
        <source>Revision</source>
        <translation>Версия</translation>
    </message>
    <message>
        <source>Cells:</source>
        <translation>Соты:</translation>
    </message>
    <message>
        <source>the modem on %1 stopped answering during the queries; the fields shown as unknown were not read</source>
        <translation>модем на %1 перестал отвечать во время запросов; поля «неизвестно» не прочитаны</translation>
    </message>
    <message>
        <source>Prints the signal level in dBm (AT+CSQ), or &quot;unknown&quot; when the modem
cannot measure it (index 99); JSON gives the raw rssi and ber too.</source>
        <translation>Выводит уровень сигнала в дБм (AT+CSQ) или «неизвестно», если модем не может
его измерить (индекс 99); в JSON также исходные rssi и ber.</translation>
    </message>
    <message>
        <source>the modem did not report the signal level: %1</source>
        <translation>модем не сообщил уровень сигнала: %1</translation>
    </message>
    <message>
        <source>no +CSQ in its answer</source>
        <translation>в его ответе нет +CSQ</translation>
    </message>
    <message>
        <source>Prints the serving cell&apos;s location area code and cell identity (AT+CREG,
hexadecimal as the modem gives them, decimal in brackets), and the
neighbour cells of modems that list them (Siemens/Cinterion: ^SMONC with
levels from ^MONI/^MONP; SIMCOM: the packet-domain cell of AT+CGREG).</source>
        <translation>Выводит код зоны (LAC) и идентификатор обслуживающей соты (AT+CREG,
шестнадцатерично, как их даёт модем, десятично в скобках) и соседние соты
модемов, которые их сообщают (Siemens/Cinterion: ^SMONC с уровнями из
^MONI/^MONP; SIMCOM: сота пакетной сети из AT+CGREG).</translation>
    </message>
    <message>
        <source>the modem reports no cell (not registered?)</source>
        <translation>модем не сообщает соту (не зарегистрирован?)</translation>
    </message>
    <message>
        <source>Cells (cell identity and LAC in hexadecimal, decimal in brackets):</source>
        <translation>Соты (идентификатор соты и LAC шестнадцатерично, десятично в скобках):</translation>
    </message>
    <message>
        <source>Prints the SIM&apos;s MCC and MNC (from the IMSI), the network&apos;s name
(AT+COPS?) and the operator table&apos;s entry for the codes: balance and
own-number USSD codes, PPP user and password, the init line.</source>
        <translation>Выводит MCC и MNC SIM-карты (из IMSI), название сети (AT+COPS?) и запись
таблицы операторов для этих кодов: USSD-коды баланса и своего номера,
пользователь и пароль PPP, строка инициализации.</translation>
    </message>
    <message>
        <source>none (the operator is not in the table)</source>
        <translation>нет (оператора нет в таблице)</translation>
    </message>
    <message>
        <source>Asks the account balance by USSD and prints the amount found in the
operator&apos;s reply, and the reply itself. The code is the operator table&apos;s
balance code for the SIM&apos;s operator unless --code gives one. The network&apos;s
reply is awaited up to about 20 s.</source>
        <translation>Запрашивает баланс счёта по USSD и выводит сумму из ответа оператора и сам
ответ. Код берётся из таблицы операторов для оператора SIM-карты, если
--code не задаёт другой. Ответ сети ожидается примерно до 20 с.</translation>
    </message>
    <message>
        <source>USSD code to send (default: the operator&apos;s).</source>
        <translation>USSD-код для отправки (по умолчанию код оператора).</translation>
    </message>
    <message>
        <source>the operator table has no balance code for %1; give one with --code</source>
        <translation>в таблице операторов нет кода баланса для %1; укажите его в --code</translation>
    </message>
    <message>
        <source>the network answered %1 without a reply text</source>
        <translation>сеть ответила на %1 без текста</translation>
    </message>
    <message>
        <source>Balance</source>
        <translation>Баланс</translation>
    </message>
    <message>
        <source>not in the reply</source>
        <translation>нет в ответе</translation>
    </message>
    <message>
        <source>Sends a USSD code and prints the network&apos;s reply (awaited up to about
20 s). Codes are written as on a phone: *100#.</source>
        <translation>Отправляет USSD-код и выводит ответ сети (ожидается примерно до 20 с).
Коды пишутся как на телефоне: *100#.</translation>
    </message>
    <message>
        <source>The USSD code, for example *100#.</source>
        <translation>USSD-код, например *100#.</translation>
    </message>
    <message>
        <source>(no text)</source>
        <translation>(без текста)</translation>
    </message>
    <message>
        <source>Asks the operator for the SIM&apos;s own telephone number, with the operator
table&apos;s code and way unless --code and --sms/--ussd-reply say otherwise.
By USSD reply the number is read from the reply (up to about 20 s). By
SMS the operator sends the number in a message: the tool waits up to 30 s
for it and deletes that message only; the other stored messages stay.</source>
        <translation>Узнаёт у оператора собственный номер SIM-карты кодом и способом из таблицы
операторов, если --code и --sms/--ussd-reply не говорят иначе. При ответе
по USSD номер читается из ответа (примерно до 20 с). По SMS оператор
присылает номер сообщением: программа ждёт его до 30 с и удаляет только
это сообщение; остальные сохранённые сообщения остаются.</translation>
    </message>
    <message>
        <source>The number comes back as an SMS.</source>
        <translation>Номер приходит в SMS.</translation>
    </message>
    <message>
        <source>The number comes back as the USSD reply.</source>
        <translation>Номер приходит в ответе USSD.</translation>
    </message>
    <message>
        <source>--sms and --ussd-reply exclude each other</source>
        <translation>--sms и --ussd-reply исключают друг друга</translation>
    </message>
    <message>
        <source>the operator table has no own-number code for %1; give one with --code</source>
        <translation>в таблице операторов нет кода своего номера для %1; укажите его в --code</translation>
    </message>
    <message>
        <source>no reply from the network</source>
        <translation>нет ответа от сети</translation>
    </message>
    <message>
        <source>the operator&apos;s %1 held no telephone number</source>
        <translation>в %1 оператора нет номера телефона</translation>
    </message>
    <message>
        <source>no such port: %1</source>
        <translation>нет такого порта: %1</translation>
    </message>
    <message>
        <source>cannot record: %1</source>
        <translation>не удаётся записывать: %1</translation>
    </message>
    <message>
        <source>%1 is in use by another program (%2)</source>
        <translation>%1 занят другой программой (%2)</translation>
    </message>
    <message>
        <source>%1 disappeared while it was being opened</source>
        <translation>%1 пропал во время открытия</translation>
    </message>
    <message>
        <source>no answer to AT</source>
        <translation>нет ответа на AT</translation>
    </message>
    <message>
        <source>no modem answers on %1 at %2 baud: %3</source>
        <translation>на %1 на скорости %2 модем не отвечает: %3</translation>
    </message>
    <message>
        <source>the SIM gives no IMSI (no SIM card, or a PIN is needed?)</source>
        <translation>SIM-карта не даёт IMSI (нет SIM-карты или нужен PIN?)</translation>
    </message>
    <message>
        <source>cannot read the SIM&apos;s operator codes on %1: %2</source>
        <translation>не удаётся прочитать коды оператора SIM-карты на %1: %2</translation>
    </message>
    <message>
        <source>  Service centre: %1</source>
        <translation>  Сервисный центр: %1</translation>
    </message>
    <message>
        <source>  Service centre time stamp: %1</source>
        <translation>  Отметка времени сервисного центра: %1</translation>
    </message>
    <message>
        <source>  Data coding scheme: 0x%1 (%2%3)</source>
        <translation>  Схема кодирования данных: 0x%1 (%2%3)</translation>
    </message>
    <message>
        <source>  Message reference: %1</source>
        <translation>  Номер сообщения: %1</translation>
    </message>
    <message>
        <source>  Recipient: %1 (type of address 0x%2)</source>
        <translation>  Получатель: %1 (тип адреса 0x%2)</translation>
    </message>
    <message>
        <source>  Status report requested: %1</source>
        <translation>  Запрошен отчёт о доставке: %1</translation>
    </message>
    <message>
        <source>  Data coding scheme: 0x%1 (%2)</source>
        <translation>  Схема кодирования данных: 0x%1 (%2)</translation>
    </message>
    <message>
        <source>Builds the SMS-SUBMIT PDUs that send TEXT to NUMBER from a modem in PDU
mode: one PDU, or a concatenated series for a long text. Each is shown
with its AT+CMGS length argument.</source>
        <translation>Строит PDU SMS-SUBMIT, которые отправляют TEXT на NUMBER с модема в режиме PDU:
один PDU или составную серию для длинного текста. Каждый показан с
аргументом длины для AT+CMGS.</translation>
    </message>
    <message>
        <source>The recipient (+79161234567 international, otherwise as dialled).</source>
        <translation>Получатель (+79161234567 международный, иначе как набирается).</translation>
    </message>
    <message>
        <source>The message text.</source>
        <translation>Текст сообщения.</translation>
    </message>
    <message>
        <source>auto (default), gsm7, 8bit or ucs2.</source>
        <translation>auto (по умолчанию), gsm7, 8bit или ucs2.</translation>
    </message>
    <message>
        <source>The number is a national one (type of address 0xA1).</source>
        <translation>Номер национальный (тип адреса 0xA1).</translation>
    </message>
    <message>
        <source>Ask for a status report.</source>
        <translation>Запросить отчёт о доставке.</translation>
    </message>
    <message>
        <source>Relative validity period in minutes.</source>
        <translation>Относительный срок действия в минутах.</translation>
    </message>
    <message>
        <source>Concatenation reference of a long message (default: the next of a counter).</source>
        <translation>Номер составного длинного сообщения (по умолчанию следующий по счётчику).</translation>
    </message>
    <message>
        <source>16-bit concatenation references.</source>
        <translation>16-битные номера составных сообщений.</translation>
    </message>
    <message>
        <source>Service centre to put in front (default: the modem&apos;s stored one).</source>
        <translation>Сервисный центр в начале PDU (по умолчанию сохранённый в модеме).</translation>
    </message>
    <message>
        <source>--alphabet takes auto, gsm7, 8bit or ucs2, not &quot;%1&quot;</source>
        <translation>--alphabet принимает auto, gsm7, 8bit или ucs2, а не «%1»</translation>
    </message>
    <message>
        <source>--validity takes a positive number of minutes</source>
        <translation>--validity принимает положительное число минут</translation>
    </message>
    <message>
        <source>--reference takes a number from 0 to %1</source>
        <translation>--reference принимает число от 0 до %1</translation>
    </message>
    <message>
        <source>cannot encode the message: %1</source>
        <translation>не удаётся закодировать сообщение: %1</translation>
    </message>
    <message>
        <source>Explains an SMS PDU given in hexadecimal (as a modem lists it in PDU
mode, service centre part first): SMS-DELIVER (a received message),
SMS-SUBMIT (one to be sent) or SMS-STATUS-REPORT, told apart by the
message type indicator. With --udh, HEX is a user-data header (its
length octet first).</source>
        <translation>Разбирает PDU SMS в шестнадцатеричном виде (как его перечисляет модем в режиме
PDU, сначала часть сервисного центра): SMS-DELIVER (полученное сообщение),
SMS-SUBMIT (отправляемое) или SMS-STATUS-REPORT, различая их по индикатору
типа сообщения. С --udh HEX — заголовок пользовательских данных (сначала
октет длины).</translation>
    </message>
    <message>
        <source>The PDU in hexadecimal (blanks allowed).</source>
        <translation>PDU в шестнадцатеричном виде (пробелы допускаются).</translation>
    </message>
    <message>
        <source>The PDU has no service-centre part in front.</source>
        <translation>В начале PDU нет части сервисного центра.</translation>
    </message>
    <message>
        <source>HEX is a user-data header.</source>
        <translation>HEX — заголовок пользовательских данных.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not hexadecimal octets</source>
        <translation>«%1» — не шестнадцатеричные октеты</translation>
    </message>
    <message>
        <source>the PDU ends before its first octet (is the service-centre part missing? see --no-smsc)</source>
        <translation>PDU кончается раньше своего первого октета (нет части сервисного центра? см. --no-smsc)</translation>
    </message>
    <message>
        <source>message type indicator 3 is reserved: not an SMS PDU</source>
        <translation>индикатор типа сообщения 3 зарезервирован: это не PDU SMS</translation>
    </message>
    <message>
        <source>unread</source>
        <translation>не прочитано</translation>
    </message>
    <message>
        <source>read</source>
        <translation>прочитано</translation>
    </message>
    <message>
        <source>unsent</source>
        <translation>не отправлено</translation>
    </message>
    <message>
        <source>sent</source>
        <translation>отправлено</translation>
    </message>
    <message>
        <source>[%1] %2  cannot be read: %3</source>
        <translation>[%1] %2  не читается: %3</translation>
    </message>
    <message>
        <source>cannot list the messages on %1: %2</source>
        <translation>не удаётся получить список сообщений на %1: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a message index (0 to %2)</source>
        <translation>«%1» — не номер сообщения (от 0 до %2)</translation>
    </message>
    <message>
        <source>Deleted message %1.</source>
        <translation>Сообщение %1 удалено.</translation>
    </message>
    <message>
        <source>Lists every message stored in the modem (PDU mode): index, time with its
zone offset, status (unread, read, unsent, sent), sender or recipient,
text, and for long messages whether every part is there. Nothing is
deleted (&quot;sms delete&quot;, &quot;sms take&quot;); the modem marks listed messages read.</source>
        <translation>Перечисляет все сообщения, сохранённые в модеме (режим PDU): номер, время с
часовым поясом, состояние (не прочитано, прочитано, не отправлено, отправлено),
отправителя или получателя, текст, а для длинных сообщений — все ли части на
месте. Ничего не удаляется («sms delete», «sms take»); модем помечает
перечисленные сообщения прочитанными.</translation>
    </message>
    <message>
        <source>%1 message(s) in the modem:</source>
        <translation>Сообщений в модеме: %1</translation>
    </message>
    <message>
        <source>Deletes the stored messages with the given indexes (as &quot;sms list&quot; shows
them) and says for each whether the modem deleted it.</source>
        <translation>Удаляет сохранённые сообщения с указанными номерами (как их показывает
«sms list») и сообщает для каждого, удалил ли его модем.</translation>
    </message>
    <message>
        <source>Store indexes to delete.</source>
        <translation>Номера сообщений для удаления.</translation>
    </message>
    <message>
        <source>Prints the received messages that could be read whole, and then deletes
those - and only those - from the modem. Messages that cannot be read, lone
parts of long messages and stored outgoing messages stay. Nothing is
deleted when the output could not be written.</source>
        <translation>Выводит полученные сообщения, прочитанные целиком, и затем удаляет из модема
их — и только их. Нечитаемые сообщения, одиночные части длинных сообщений и
сохранённые исходящие остаются. Если вывод не удалось записать, ничего не
удаляется.</translation>
    </message>
    <message>
        <source>%1 message(s), taken from the modem:</source>
        <translation>Сообщений, взятых из модема: %1</translation>
    </message>
    <message>
        <source>the messages could not be written out; none was deleted</source>
        <translation>сообщения не удалось вывести; ни одно не удалено</translation>
    </message>
    <message>
        <source>not every message taken was deleted: %1</source>
        <translation>удалены не все взятые сообщения: %1</translation>
    </message>
    <message>
        <source>Sends an SMS in PDU mode: any text, in UCS2 when the GSM alphabet cannot
carry it and in several parts when it is long. It counts as sent only when
the modem confirmed every part (+CMGS: &lt;reference&gt;). A number or text with
control characters (Ctrl-Z, ESC, line breaks in the number) is refused
and nothing is sent.</source>
        <translation>Отправляет SMS в режиме PDU: любой текст, в UCS2, если алфавит GSM его не
передаёт, и несколькими частями, если он длинный. Сообщение считается
отправленным, только когда модем подтвердил каждую часть (+CMGS: &lt;номер&gt;).
Номер или текст с управляющими символами (Ctrl-Z, ESC, переводы строки в
номере) отвергается, и ничего не отправляется.</translation>
    </message>
    <message>
        <source>The recipient (+79161234567, or digits, * and #).</source>
        <translation>Получатель (+79161234567 или цифры, * и #).</translation>
    </message>
    <message>
        <source>Seconds to wait for the network&apos;s confirmation of each part (default 30).</source>
        <translation>Секунд ожидания подтверждения сети для каждой части (по умолчанию 30).</translation>
    </message>
    <message>
        <source>--wait takes 1 to 600 seconds</source>
        <translation>--wait принимает от 1 до 600 секунд</translation>
    </message>
    <message>
        <source>message to %1: %2</source>
        <translation>сообщение на %1: %2</translation>
    </message>
    <message>
        <source>Sent to %1 in %2 part(s), confirmed (reference %3).</source>
        <translation>Отправлено на %1 (частей: %2), подтверждено (номер %3).</translation>
    </message>
    <message>
        <source>Stops every running dialer (sudo killall pppd, sudo killall wvdial: a
data connection in progress is DROPPED; the running ones are listed and
stopped only after a yes or with --yes), runs wvdialconf to search the
serial ports, and prints the search file it wrote:
&lt;work directory&gt;/modems/wvdial.conf.srch, the work directory being the
one of /opt/orvel5zel/etc/zel5.conf (QT5EXT_INITCONFIG names another
configuration file).</source>
        <translation>Останавливает все работающие дозвонщики (sudo killall pppd, sudo killall
wvdial: текущее соединение РАЗРЫВАЕТСЯ; работающие перечисляются и
останавливаются только после «да» или с --yes), запускает wvdialconf для
поиска по последовательным портам и выводит записанный им файл поиска:
&lt;рабочая папка&gt;/modems/wvdial.conf.srch, где рабочая папка берётся из
/opt/orvel5zel/etc/zel5.conf (QT5EXT_INITCONFIG указывает другой файл
настроек).</translation>
    </message>
    <message>
        <source>Stop the running dialers without asking.</source>
        <translation>Остановить работающие дозвонщики без вопроса.</translation>
    </message>
    <message>
        <source>Wait at most this many milliseconds for wvdialconf (default 60000; -1: no limit).</source>
        <translation>Ждать wvdialconf не дольше стольких миллисекунд (по умолчанию 60000; -1 — без ограничения).</translation>
    </message>
    <message>
        <source>The wvdialconf program (default %1).</source>
        <translation>Программа wvdialconf (по умолчанию %1).</translation>
    </message>
    <message>
        <source>--timeout takes milliseconds (or -1)</source>
        <translation>--timeout принимает миллисекунды (или -1)</translation>
    </message>
    <message>
        <source>%1 is not there or not executable (Debian: apt install wvdial)</source>
        <translation>%1 отсутствует или не исполняемый (Debian: apt install wvdial)</translation>
    </message>
    <message>
        <source>the folder %1 for the search file is not there or not writable (the work directory comes from /opt/orvel5zel/etc/zel5.conf, or QT5EXT_INITCONFIG); nothing was stopped</source>
        <translation>папка %1 для файла поиска отсутствует или недоступна для записи (рабочая папка берётся из /opt/orvel5zel/etc/zel5.conf или QT5EXT_INITCONFIG); ничего не остановлено</translation>
    </message>
    <message>
        <source>%1 would be stopped and their connections dropped; nothing was stopped (run again with --yes to go on)</source>
        <translation>будут остановлены %1 и разорваны их соединения; ничего не остановлено (запустите снова с --yes, чтобы продолжить)</translation>
    </message>
    <message>
        <source>%1 did not write %2: %3</source>
        <translation>%1 не записал %2: %3</translation>
    </message>
    <message>
        <source>it said nothing</source>
        <translation>он ничего не сообщил</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>не удаётся прочитать %1: %2</translation>
    </message>
    <message>
        <source>  (part %1 of %2, not joined: another part %1 from the same sender and reference is stored)</source>
        <translation>  (часть %1 из %2, не объединена: в памяти есть другая часть %1 от того же отправителя с тем же номером)</translation>
    </message>
    <message>
        <source>, port %1</source>
        <translation>, порт %1</translation>
    </message>
    <message>
        <source>, port %1 (from port %2)</source>
        <translation>, порт %1 (с порта %2)</translation>
    </message>
    <message>
        <source>[%1] %2%3  status report for message %4 to %5</source>
        <translation>[%1] %2%3  отчёт о доставке сообщения %4 на %5</translation>
    </message>
    <message>
        <source>  status: %1</source>
        <translation>  состояние: %1</translation>
    </message>
    <message>
        <source>  at: %1</source>
        <translation>  время: %1</translation>
    </message>
    <message>
        <source>to %1</source>
        <translation>кому %1</translation>
    </message>
    <message>
        <source>from %1</source>
        <translation>от %1</translation>
    </message>
    <message>
        <source>  data, %1 octet(s)%2:</source>
        <translation>  данные, октетов: %1%2:</translation>
    </message>
    <message>
        <source>Lists every message stored in the modem (PDU mode): index, time with its
zone offset, status (unread, read, unsent, sent), sender or recipient,
text (data in hexadecimal with its ports; a status report&apos;s message,
recipient, time and outcome), and for long messages whether every part
is there. Nothing is deleted (&quot;sms delete&quot;, &quot;sms take&quot;); the modem
marks listed messages read.</source>
        <translation>Перечисляет все сообщения в памяти модема (режим PDU): индекс, время со
смещением пояса, состояние (непрочитанное, прочитанное, неотправленное,
отправленное), отправителя или получателя, текст (данные — в шестнадцатеричном
виде с портами; для отчёта о доставке — сообщение, получателя, время и итог)
и для длинных сообщений — все ли части на месте. Ничего не удаляется
(&quot;sms delete&quot;, &quot;sms take&quot;); модем помечает показанные сообщения прочитанными.</translation>
    </message>
    <message>
        <source>Prints the received messages and status reports that could be read whole
(text, data in hexadecimal with its ports, a report&apos;s outcome), and then
deletes those - and only those - from the modem. Messages that cannot be
read, lone or doubtful parts of long messages and stored outgoing messages
stay. Nothing is deleted when the output could not be written.</source>
        <translation>Выводит полученные сообщения и отчёты о доставке, которые удалось прочитать
целиком (текст, данные в шестнадцатеричном виде с портами, итог отчёта), и
затем удаляет из модема их — и только их. Нечитаемые сообщения, одиночные или
сомнительные части длинных сообщений и сохранённые исходящие остаются. Если
вывод не удалось записать, ничего не удаляется.</translation>
    </message>
    <message>
        <source>message to %1: %2 of %3 part(s) sent%4; part %5 was being handed to the modem and may still arrive; check before sending again
</source>
        <translation>сообщение на %1: отправлено частей %2 из %3%4; часть %5 передавалась модему и может ещё дойти; проверьте, прежде чем отправлять снова
</translation>
    </message>
    <message>
        <source>%1 is in use by another program</source>
        <translation>%1 занят другой программой</translation>
    </message>
    <message>
        <source>cannot open %1: %2</source>
        <translation>не удаётся открыть %1: %2</translation>
    </message>
    <message>
        <source>%1 is not a serial port (not a terminal device)</source>
        <translation>%1 — не последовательный порт (не терминальное устройство)</translation>
    </message>
    <message>
        <source>cannot make a pseudo-terminal for the recording</source>
        <translation>не удаётся создать псевдотерминал для записи</translation>
    </message>
    <message>
        <source>%1 exists; a recording is written to a new file only</source>
        <translation>%1 уже существует; запись ведётся только в новый файл</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>не удаётся записать %1: %2</translation>
    </message>
</context>
</TS>
