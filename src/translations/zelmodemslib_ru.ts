<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>AtModem</name>
    <message>
        <source>Wrong mcc %1</source>
        <translation>Неверный mcc %1</translation>
    </message>
    <message>
        <source>Wrong mnc%1</source>
        <translation>Неверный mnc%1</translation>
    </message>
    <message>
        <source>Operator</source>
        <translation>Оператор</translation>
    </message>
    <message>
        <source>Retry send USSD for ZTE modems</source>
        <translation>Повторная отправка USSD для модемов ZTE</translation>
    </message>
    <message>
        <source>Waiting for USSD reply, attempt %1.</source>
        <translation>Ожидание ответа на USSD, попытка %1.</translation>
    </message>
    <message>
        <source>minus</source>
        <translation>минус</translation>
    </message>
    <message>
        <source>Port opening error: %1</source>
        <translation>Ошибка открытия порта: %1</translation>
    </message>
    <message>
        <source>Modem is offline pn port %1</source>
        <translation>Модем не отвечает на порту %1</translation>
    </message>
    <message>
        <source>Modem said &quot;ERROR&quot;</source>
        <translation>Модем ответил &quot;ERROR&quot;</translation>
    </message>
    <message>
        <source>Modem said &quot;NO CARRIER&quot;</source>
        <translation>Модем ответил &quot;NO CARRIER&quot;</translation>
    </message>
    <message>
        <source>USSD code</source>
        <translation>USSD-код</translation>
    </message>
    <message>
        <source>number</source>
        <translation>номер</translation>
    </message>
    <message>
        <source>text</source>
        <translation>текст</translation>
    </message>
    <message>
        <source>Refused %1, nothing sent: %2</source>
        <translation>Отвергнут %1, ничего не отправлено: %2</translation>
    </message>
    <message>
        <source>The answer ran past %1 bytes without a result code: not a modem&apos;s answer</source>
        <translation>Ответ превысил %1 байт без кода результата: это не ответ модема</translation>
    </message>
    <message>
        <source>Port opening error: %1 is in use by another program (%2)</source>
        <translation>Ошибка открытия порта: %1 занят другой программой (%2)</translation>
    </message>
    <message>
        <source>%1 is in use by another program (%2)</source>
        <translation>%1 занят другой программой (%2)</translation>
    </message>
</context>
<context>
    <name>ModemsFinder</name>
    <message>
        <source>There are no available ports</source>
        <translation>Нет доступных портов</translation>
    </message>
    <message>
        <source>There no devices finded</source>
        <translation>Устройства не найдены</translation>
    </message>
    <message>
        <source>Search on %1</source>
        <translation>Поиск на %1</translation>
    </message>
    <message>
        <source>Invalid port %1</source>
        <translation>Неверный порт %1</translation>
    </message>
    <message>
        <source>The port %1 is busy</source>
        <translation>Порт %1 занят</translation>
    </message>
    <message>
        <source>product identifire is %1</source>
        <translation>идентификатор продукта %1</translation>
    </message>
    <message>
        <source>vendor identifire is %1</source>
        <translation>идентификатор производителя %1</translation>
    </message>
    <message>
        <source>manufacturer is %1</source>
        <translation>производитель %1</translation>
    </message>
    <message>
        <source>Port %1:</source>
        <translation>Порт %1:</translation>
    </message>
    <message>
        <source>Modem on %1 %2</source>
        <translation>Модем на %1 %2</translation>
    </message>
    <message>
        <source>is open</source>
        <translation>открыт</translation>
    </message>
    <message>
        <source>is not open</source>
        <translation>не открыт</translation>
    </message>
    <message>
        <source>port %1 baudrate %2</source>
        <translation>порт %1 скорость %2</translation>
    </message>
    <message>
        <source>port %1 mnc request error</source>
        <translation>порт %1: ошибка запроса mnc</translation>
    </message>
    <message>
        <source>port %1 mcc %2 mnc %3</source>
        <translation>порт %1 mcc %2 mnc %3</translation>
    </message>
    <message>
        <source>port %1: %2 mnc=%3, mcc=%4</source>
        <translation>порт %1: %2 mnc=%3, mcc=%4</translation>
    </message>
    <message>
        <source>Mnc table does not contain</source>
        <translation>Таблица MNC не содержит</translation>
    </message>
    <message>
        <source>port %1 search result %2</source>
        <translation>порт %1 результат поиска %2</translation>
    </message>
</context>
<context>
    <name>PDU</name>
    <message>
        <source>Not hexadecimal text: character &apos;%1&apos; after %2 digits</source>
        <translation>Текст не является шестнадцатеричным: символ &apos;%1&apos;, перед ним цифр: %2</translation>
    </message>
    <message>
        <source>Odd number of hexadecimal digits (%1)</source>
        <translation>Нечётное число шестнадцатеричных цифр (%1)</translation>
    </message>
    <message>
        <source>Empty PDU</source>
        <translation>Пустой PDU</translation>
    </message>
    <message>
        <source>Truncated in %1 at octet %2 (%3 needed, %4 left)</source>
        <translation>Данные обрываются при чтении %1 на октете %2 (нужно %3, осталось %4)</translation>
    </message>
    <message>
        <source>unknown type</source>
        <translation>неизвестный тип</translation>
    </message>
    <message>
        <source>international</source>
        <translation>международный</translation>
    </message>
    <message>
        <source>national</source>
        <translation>национальный</translation>
    </message>
    <message>
        <source>network specific</source>
        <translation>специфичный для сети</translation>
    </message>
    <message>
        <source>subscriber</source>
        <translation>абонентский</translation>
    </message>
    <message>
        <source>alphanumeric</source>
        <translation>буквенно-цифровой</translation>
    </message>
    <message>
        <source>abbreviated</source>
        <translation>сокращённый</translation>
    </message>
    <message>
        <source>reserved type</source>
        <translation>зарезервированный тип</translation>
    </message>
    <message>
        <source>invalid (%1)</source>
        <translation>недопустимое значение (%1)</translation>
    </message>
    <message>
        <source>Concatenated short messages, 8-bit reference</source>
        <translation>Составные короткие сообщения, 8-битная ссылка</translation>
    </message>
    <message>
        <source>Special SMS message indication</source>
        <translation>Индикация специального SMS-сообщения</translation>
    </message>
    <message>
        <source>Application port addressing, 8-bit address</source>
        <translation>Адресация портов приложений, 8-битный адрес</translation>
    </message>
    <message>
        <source>Application port addressing, 16-bit address</source>
        <translation>Адресация портов приложений, 16-битный адрес</translation>
    </message>
    <message>
        <source>SMSC control parameters</source>
        <translation>Параметры управления SMSC</translation>
    </message>
    <message>
        <source>UDH source indicator</source>
        <translation>Индикатор источника UDH</translation>
    </message>
    <message>
        <source>Concatenated short messages, 16-bit reference</source>
        <translation>Составные короткие сообщения, 16-битная ссылка</translation>
    </message>
    <message>
        <source>Wireless control message protocol</source>
        <translation>Протокол беспроводных управляющих сообщений (WCMP)</translation>
    </message>
    <message>
        <source>Text formatting</source>
        <translation>Форматирование текста</translation>
    </message>
    <message>
        <source>Predefined sound</source>
        <translation>Предопределённый звук</translation>
    </message>
    <message>
        <source>User defined sound</source>
        <translation>Пользовательский звук</translation>
    </message>
    <message>
        <source>Predefined animation</source>
        <translation>Предопределённая анимация</translation>
    </message>
    <message>
        <source>Large animation</source>
        <translation>Большая анимация</translation>
    </message>
    <message>
        <source>Small animation</source>
        <translation>Малая анимация</translation>
    </message>
    <message>
        <source>Large picture</source>
        <translation>Большое изображение</translation>
    </message>
    <message>
        <source>Small picture</source>
        <translation>Малое изображение</translation>
    </message>
    <message>
        <source>Variable picture</source>
        <translation>Изображение переменного размера</translation>
    </message>
    <message>
        <source>User prompt indicator</source>
        <translation>Индикатор запроса к пользователю</translation>
    </message>
    <message>
        <source>Extended object</source>
        <translation>Расширенный объект</translation>
    </message>
    <message>
        <source>Reused extended object</source>
        <translation>Повторно используемый расширенный объект</translation>
    </message>
    <message>
        <source>Compression control</source>
        <translation>Управление сжатием</translation>
    </message>
    <message>
        <source>Object distribution indicator</source>
        <translation>Индикатор распространения объекта</translation>
    </message>
    <message>
        <source>Standard WVG object</source>
        <translation>Стандартный объект WVG</translation>
    </message>
    <message>
        <source>Character size WVG object</source>
        <translation>Объект WVG размером с символ</translation>
    </message>
    <message>
        <source>Extended object data request command</source>
        <translation>Команда запроса данных расширенного объекта</translation>
    </message>
    <message>
        <source>RFC 822 e-mail header</source>
        <translation>Заголовок электронной почты RFC 822</translation>
    </message>
    <message>
        <source>Hyperlink format element</source>
        <translation>Элемент формата гиперссылки</translation>
    </message>
    <message>
        <source>Reply address element</source>
        <translation>Элемент адреса для ответа</translation>
    </message>
    <message>
        <source>Enhanced voice mail information</source>
        <translation>Расширенная информация голосовой почты</translation>
    </message>
    <message>
        <source>National language single shift</source>
        <translation>Однократное переключение на таблицу национального языка</translation>
    </message>
    <message>
        <source>National language locking shift</source>
        <translation>Фиксированное переключение на таблицу национального языка</translation>
    </message>
    <message>
        <source>SIM toolkit security header</source>
        <translation>Заголовок безопасности SIM Toolkit</translation>
    </message>
    <message>
        <source>SME to SME specific use</source>
        <translation>для использования между SME</translation>
    </message>
    <message>
        <source>SC specific use</source>
        <translation>для использования в SC</translation>
    </message>
    <message>
        <source>reserved</source>
        <translation>резерв</translation>
    </message>
    <message>
        <source>reserved language</source>
        <translation>зарезервированный код языка</translation>
    </message>
    <message>
        <source>voice message waiting</source>
        <translation>ожидают голосовые сообщения</translation>
    </message>
    <message>
        <source>fax message waiting</source>
        <translation>ожидают факсимильные сообщения</translation>
    </message>
    <message>
        <source>electronic mail message waiting</source>
        <translation>ожидают сообщения электронной почты</translation>
    </message>
    <message>
        <source>other message waiting</source>
        <translation>ожидают другие сообщения</translation>
    </message>
    <message>
        <source>%1, %2 waiting, %3</source>
        <translation>%1, количество: %2, %3</translation>
    </message>
    <message>
        <source>store the message</source>
        <translation>сохранить сообщение</translation>
    </message>
    <message>
        <source>discard the message</source>
        <translation>не сохранять сообщение</translation>
    </message>
    <message>
        <source>reference %1, part %2 of %3</source>
        <translation>ссылка %1, часть %2 из %3</translation>
    </message>
    <message>
        <source> (inconsistent: the part is to be ignored)</source>
        <translation> (противоречивые данные: часть следует игнорировать)</translation>
    </message>
    <message>
        <source>destination port %1, originator port %2</source>
        <translation>порт назначения %1, порт отправителя %2</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>Invalid status value</source>
        <translation>Недопустимое значение статуса</translation>
    </message>
    <message>
        <source>Reserved</source>
        <translation>Зарезервированное значение</translation>
    </message>
    <message>
        <source>Short message received by the SME</source>
        <translation>Короткое сообщение получено SME</translation>
    </message>
    <message>
        <source>Short message forwarded by the SC to the SME but the SC is unable to confirm delivery</source>
        <translation>Короткое сообщение передано SC в SME, но SC не может подтвердить доставку</translation>
    </message>
    <message>
        <source>Short message replaced by the SC</source>
        <translation>Короткое сообщение заменено SC</translation>
    </message>
    <message>
        <source>Remote procedure error</source>
        <translation>Ошибка удалённой процедуры</translation>
    </message>
    <message>
        <source>Incompatible destination</source>
        <translation>Несовместимый адресат</translation>
    </message>
    <message>
        <source>Connection rejected by SME</source>
        <translation>Соединение отклонено SME</translation>
    </message>
    <message>
        <source>Not obtainable</source>
        <translation>Адресат недоступен</translation>
    </message>
    <message>
        <source>Quality of service not available</source>
        <translation>Требуемое качество обслуживания недоступно</translation>
    </message>
    <message>
        <source>No interworking available</source>
        <translation>Межсетевое взаимодействие невозможно</translation>
    </message>
    <message>
        <source>SM validity period expired</source>
        <translation>Истёк срок действия короткого сообщения</translation>
    </message>
    <message>
        <source>SM deleted by originating SME</source>
        <translation>Короткое сообщение удалено SME-отправителем</translation>
    </message>
    <message>
        <source>SM deleted by SC administration</source>
        <translation>Короткое сообщение удалено администрацией SC</translation>
    </message>
    <message>
        <source>SM does not exist</source>
        <translation>Короткое сообщение не существует</translation>
    </message>
    <message>
        <source>Congestion</source>
        <translation>Перегрузка</translation>
    </message>
    <message>
        <source>SME busy</source>
        <translation>SME занят</translation>
    </message>
    <message>
        <source>No response from SME</source>
        <translation>Нет ответа от SME</translation>
    </message>
    <message>
        <source>Service rejected</source>
        <translation>В обслуживании отказано</translation>
    </message>
    <message>
        <source>Error in SME</source>
        <translation>Ошибка в SME</translation>
    </message>
    <message>
        <source>Specific to the service centre</source>
        <translation>Значение, определяемое сервисным центром</translation>
    </message>
    <message>
        <source>Invalid recipient number &quot;%1&quot;</source>
        <translation>Неверный номер получателя &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Invalid service centre number &quot;%1&quot;</source>
        <translation>Неверный номер сервисного центра &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Text messages are sent in the GSM 7-bit or UCS2 alphabet</source>
        <translation>Текстовые сообщения отправляются в 7-битном алфавите GSM или в UCS2</translation>
    </message>
    <message>
        <source>The text has characters outside the GSM 7-bit alphabet</source>
        <translation>Текст содержит символы вне 7-битного алфавита GSM</translation>
    </message>
    <message>
        <source>The text needs %1 messages, more than %2</source>
        <translation>Для текста нужно сообщений: %1, это больше %2</translation>
    </message>
    <message>
        <source>the service centre address</source>
        <translation>адреса сервисного центра</translation>
    </message>
    <message>
        <source>the first octet</source>
        <translation>первого октета</translation>
    </message>
    <message>
        <source>Not an SMS-SUBMIT (message type indicator %1)</source>
        <translation>Это не SMS-SUBMIT (индикатор типа сообщения %1)</translation>
    </message>
    <message>
        <source>the message reference</source>
        <translation>ссылки на сообщение</translation>
    </message>
    <message>
        <source>the destination address</source>
        <translation>адреса назначения</translation>
    </message>
    <message>
        <source>the protocol identifier</source>
        <translation>идентификатора протокола</translation>
    </message>
    <message>
        <source>the data coding scheme</source>
        <translation>схемы кодирования данных</translation>
    </message>
    <message>
        <source>the validity period</source>
        <translation>срока действия</translation>
    </message>
    <message>
        <source>the user data length</source>
        <translation>длины пользовательских данных</translation>
    </message>
    <message>
        <source>the user data</source>
        <translation>пользовательских данных</translation>
    </message>
    <message>
        <source>The user data header (%1 octets) is longer than the user data (%2)</source>
        <translation>Заголовок пользовательских данных (длина %1) длиннее самих пользовательских данных (%2)</translation>
    </message>
    <message>
        <source>Not an SMS-STATUS-REPORT (message type indicator %1, %2)</source>
        <translation>Это не SMS-STATUS-REPORT (индикатор типа сообщения %1, %2)</translation>
    </message>
    <message>
        <source>the recipient address</source>
        <translation>адреса получателя</translation>
    </message>
    <message>
        <source>the service centre time stamp</source>
        <translation>отметки времени сервисного центра</translation>
    </message>
    <message>
        <source>the discharge time</source>
        <translation>времени завершения</translation>
    </message>
    <message>
        <source>the status</source>
        <translation>статуса</translation>
    </message>
    <message>
        <source>Invalid SMS-STATUS-REPORT: %1</source>
        <translation>Некорректный SMS-STATUS-REPORT: %1</translation>
    </message>
    <message>
        <source>transaction completed</source>
        <translation>транзакция завершена</translation>
    </message>
    <message>
        <source>temporary error, the SC is still trying</source>
        <translation>временная ошибка, SC продолжает попытки</translation>
    </message>
    <message>
        <source>permanent error, no more attempts</source>
        <translation>постоянная ошибка, попыток больше не будет</translation>
    </message>
    <message>
        <source>temporary error, no more attempts</source>
        <translation>временная ошибка, попыток больше не будет</translation>
    </message>
    <message>
        <source>  Message reference: %1</source>
        <translation>  Ссылка на сообщение: %1</translation>
    </message>
    <message>
        <source>  Recipient: %1 (%2)</source>
        <translation>  Получатель: %1 (%2)</translation>
    </message>
    <message>
        <source>  Service centre time stamp: %1</source>
        <translation>  Отметка времени сервисного центра: %1</translation>
    </message>
    <message>
        <source>  Discharge time: %1</source>
        <translation>  Время завершения: %1</translation>
    </message>
    <message>
        <source>  Status: 0x%1 (%2): %3</source>
        <translation>  Статус: 0x%1 (%2): %3</translation>
    </message>
    <message>
        <source>Empty user data header</source>
        <translation>Пустой заголовок пользовательских данных</translation>
    </message>
    <message>
        <source>User data header, %1 octets declared, only %2 present</source>
        <translation>Заголовок пользовательских данных, заявленная длина %1, фактически только %2</translation>
    </message>
    <message>
        <source>User data header, %1 octets</source>
        <translation>Заголовок пользовательских данных, длина %1</translation>
    </message>
    <message>
        <source>  (%1 further octets are not part of the header)</source>
        <translation>  (октетов за пределами заголовка: %1)</translation>
    </message>
    <message>
        <source>  Element 0x%1 truncated: its length octet is missing</source>
        <translation>  Элемент 0x%1 обрезан: отсутствует октет длины</translation>
    </message>
    <message>
        <source>  %1 (%2) truncated: %3 octets declared, %4 present%5</source>
        <translation>  %1 (%2): элемент обрезан, заявленная длина %3, фактическая %4%5</translation>
    </message>
    <message>
        <source>Element</source>
        <translation>Элемент</translation>
    </message>
    <message>
        <source>  Unknown element %1 (%2), %3 octets%4</source>
        <translation>  Неизвестный элемент %1 (%2), длина %3%4</translation>
    </message>
    <message>
        <source>  %1 (%2): wrong length %3 (%4 expected)%5</source>
        <translation>  %1 (%2): неверная длина %3 (ожидалось %4)%5</translation>
    </message>
    <message>
        <source>  %1 (%2), %3 octets%4</source>
        <translation>  %1 (%2), длина %3%4</translation>
    </message>
    <message>
        <source>  %1: %2</source>
        <translation>  %1: %2</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Unknown error</source>
        <translation>Неизвестная ошибка</translation>
    </message>
    <message>
        <source>Invalid port name or baudrate</source>
        <translation>Неверное имя порта или скорость</translation>
    </message>
    <message>
        <source>Mnc table does not contain an operator with mcc = %1 and mnc = %2</source>
        <translation>Таблица MNC не содержит оператора с mcc = %1 и mnc = %2</translation>
    </message>
    <message>
        <source>Mnc table contains wrong operator data for mcc = %1 and mnc = %2</source>
        <translation>Таблица MNC содержит неверные данные оператора для mcc = %1 и mnc = %2</translation>
    </message>
    <message>
        <source>Request timeout</source>
        <translation>Превышено время ожидания ответа</translation>
    </message>
</context>
<context>
    <name>ShortMessage</name>
    <message>
        <source>The user data header ends inside an element at octet %1</source>
        <translation>Заголовок пользовательских данных кончается внутри элемента на октете %1</translation>
    </message>
    <message>
        <source>The user data header element 0x%1 needs %2 octets, %3 are left</source>
        <translation>Элементу 0x%1 заголовка пользовательских данных нужно октетов: %2, осталось: %3</translation>
    </message>
    <message>
        <source>the user data length</source>
        <translation>длине пользовательских данных</translation>
    </message>
    <message>
        <source>User data length %1 is more than a message can hold (%2)</source>
        <translation>Длина пользовательских данных %1 больше, чем вмещает сообщение (%2)</translation>
    </message>
    <message>
        <source>the user data</source>
        <translation>пользовательских данных</translation>
    </message>
    <message>
        <source>The user data header (%1 octets) is longer than the user data (%2)</source>
        <translation>Заголовок пользовательских данных (октетов: %1) длиннее самих данных (%2)</translation>
    </message>
    <message>
        <source>User data length %1 is shorter than its header (%2 septets)</source>
        <translation>Длина пользовательских данных %1 меньше их заголовка (септетов: %2)</translation>
    </message>
    <message>
        <source>the service centre address</source>
        <translation>адресе сервисного центра</translation>
    </message>
    <message>
        <source>Invalid time stamp in %1: %2</source>
        <translation>Неверная отметка времени в %1: %2</translation>
    </message>
    <message>
        <source>the protocol identifier</source>
        <translation>идентификаторе протокола</translation>
    </message>
    <message>
        <source>the data coding scheme</source>
        <translation>схеме кодирования данных</translation>
    </message>
    <message>
        <source>Compressed user data (data coding scheme 0x%1) cannot be read</source>
        <translation>Сжатые пользовательские данные (схема кодирования 0x%1) не читаются</translation>
    </message>
    <message>
        <source>the originating address</source>
        <translation>адресе отправителя</translation>
    </message>
    <message>
        <source>the service centre time stamp</source>
        <translation>отметке времени сервисного центра</translation>
    </message>
    <message>
        <source>the message reference</source>
        <translation>номере сообщения</translation>
    </message>
    <message>
        <source>the destination address</source>
        <translation>адресе получателя</translation>
    </message>
    <message>
        <source>the validity period</source>
        <translation>сроке действия</translation>
    </message>
    <message>
        <source>the recipient address</source>
        <translation>адресе получателя</translation>
    </message>
    <message>
        <source>the discharge time</source>
        <translation>времени доставки</translation>
    </message>
    <message>
        <source>the status</source>
        <translation>состоянии</translation>
    </message>
    <message>
        <source>the parameter indicator</source>
        <translation>индикаторе параметров</translation>
    </message>
    <message>
        <source>Empty PDU</source>
        <translation>Пустой PDU</translation>
    </message>
    <message>
        <source>the first octet</source>
        <translation>первом октете</translation>
    </message>
    <message>
        <source>Reserved message type indicator 3 in the first octet</source>
        <translation>Зарезервированный индикатор типа сообщения 3 в первом октете</translation>
    </message>
</context>
<context>
    <name>SmsPduDecoder</name>
    <message>
        <source>Error reading service number.</source>
        <translation>Ошибка чтения номера сервисного центра.</translation>
    </message>
    <message>
        <source>Error reading message type.</source>
        <translation>Ошибка чтения типа сообщения.</translation>
    </message>
    <message>
        <source>Error reading address length.</source>
        <translation>Ошибка чтения длины адреса.</translation>
    </message>
    <message>
        <source>Error reading address type.</source>
        <translation>Ошибка чтения типа адреса.</translation>
    </message>
    <message>
        <source>Error reading address type %1.</source>
        <translation>Ошибка чтения типа адреса %1.</translation>
    </message>
    <message>
        <source>Error reading sender address.</source>
        <translation>Ошибка чтения адреса отправителя.</translation>
    </message>
    <message>
        <source>Error reading data coding scheme.</source>
        <translation>Ошибка чтения схемы кодирования данных.</translation>
    </message>
    <message>
        <source>Error reading timestamp.</source>
        <translation>Ошибка чтения отметки времени.</translation>
    </message>
    <message>
        <source>Error reading user data length.</source>
        <translation>Ошибка чтения длины данных пользователя.</translation>
    </message>
    <message>
        <source>Error reading text of message.</source>
        <translation>Ошибка чтения текста сообщения.</translation>
    </message>
</context>
<context>
    <name>UssdRequest</name>
    <message>
        <source>The modem did not end the session: %1</source>
        <translation>Модем не завершил сеанс: %1</translation>
    </message>
    <message>
        <source>No USSD code given</source>
        <translation>Не указан USSD-код</translation>
    </message>
    <message>
        <source>The modem refused the request</source>
        <translation>Модем отверг запрос</translation>
    </message>
    <message>
        <source>The network answered with status %1: %2</source>
        <translation>Сеть ответила с состоянием %1: %2</translation>
    </message>
    <message>
        <source>The modem answered ERROR to the request</source>
        <translation>Модем ответил ERROR на запрос</translation>
    </message>
    <message>
        <source>The modem is gone</source>
        <translation>Модем пропал</translation>
    </message>
    <message>
        <source>No reply from the network within %1 s</source>
        <translation>Нет ответа от сети за %1 с</translation>
    </message>
    <message>
        <source>no further action required</source>
        <translation>дальнейших действий не требуется</translation>
    </message>
    <message>
        <source>further user action required</source>
        <translation>требуется ответ пользователя</translation>
    </message>
    <message>
        <source>terminated by the network</source>
        <translation>завершено сетью</translation>
    </message>
    <message>
        <source>answered by another local client</source>
        <translation>отвечено другим локальным клиентом</translation>
    </message>
    <message>
        <source>operation not supported</source>
        <translation>операция не поддерживается</translation>
    </message>
    <message>
        <source>network time-out</source>
        <translation>истекло время ожидания сети</translation>
    </message>
    <message>
        <source>unknown status</source>
        <translation>неизвестное состояние</translation>
    </message>
    <message>
        <source>Refused the USSD code, nothing sent: %1</source>
        <translation>USSD-код отвергнут, ничего не отправлено: %1</translation>
    </message>
    <message>
        <source>The modem&apos;s port is not open</source>
        <translation>Порт модема не открыт</translation>
    </message>
    <message>
        <source>The modem refused the request: %1</source>
        <translation>Модем отверг запрос: %1</translation>
    </message>
    <message>
        <source>The modem did not take the request: %1</source>
        <translation>Модем не принял запрос: %1</translation>
    </message>
</context>
<context>
    <name>WvDialConfWrapper</name>
    <message>
        <source>wvdial error</source>
        <translation>ошибка wvdial</translation>
    </message>
    <message>
        <source>wvdial</source>
        <translation>wvdial</translation>
    </message>
</context>
<context>
    <name>zelmodems::AtInput</name>
    <message>
        <source>the value holds the control character %1</source>
        <translation>значение содержит управляющий символ %1</translation>
    </message>
    <message>
        <source>the value holds a double quote</source>
        <translation>значение содержит двойную кавычку</translation>
    </message>
    <message>
        <source>the number is empty</source>
        <translation>номер пуст</translation>
    </message>
    <message>
        <source>the number holds the control character %1</source>
        <translation>номер содержит управляющий символ %1</translation>
    </message>
    <message>
        <source>the number holds &quot;%1&quot;; only digits, * and #, after an optional +, can be dialled</source>
        <translation>номер содержит «%1»; набирать можно только цифры, * и # после необязательного +</translation>
    </message>
    <message>
        <source>the USSD code is empty</source>
        <translation>USSD-код пуст</translation>
    </message>
    <message>
        <source>the USSD code holds the control character %1</source>
        <translation>USSD-код содержит управляющий символ %1</translation>
    </message>
    <message>
        <source>the USSD code holds a double quote</source>
        <translation>USSD-код содержит двойную кавычку</translation>
    </message>
    <message>
        <source>the text holds Ctrl-Z (U+001A), which would end the message early</source>
        <translation>текст содержит Ctrl-Z (U+001A), который преждевременно закончил бы сообщение</translation>
    </message>
    <message>
        <source>the text holds ESC (U+001B), which would cancel the message</source>
        <translation>текст содержит ESC (U+001B), который отменил бы сообщение</translation>
    </message>
    <message>
        <source>the text holds the control character %1</source>
        <translation>текст содержит управляющий символ %1</translation>
    </message>
    <message>
        <source>the number holds &quot;%1&quot;; a recipient is digits after an optional +</source>
        <translation>номер содержит «%1»; номер получателя — цифры, возможно после +</translation>
    </message>
    <message>
        <source>the number has no digits</source>
        <translation>в номере нет цифр</translation>
    </message>
</context>
<context>
    <name>zelmodems::MessageStore</name>
    <message>
        <source>the listing of %1 bytes is larger than any message store holds; refused</source>
        <translation>список размером %1 байт больше любого хранилища сообщений; отвергнут</translation>
    </message>
    <message>
        <source>the index &quot;%1&quot; is not a store index</source>
        <translation>«%1» — не номер в хранилище</translation>
    </message>
    <message>
        <source>no PDU line follows the entry</source>
        <translation>за записью нет строки PDU</translation>
    </message>
    <message>
        <source>the modem refused PDU mode (AT+CMGF=0): %1</source>
        <translation>модем отверг режим PDU (AT+CMGF=0): %1</translation>
    </message>
    <message>
        <source>the listing did not end (AT+CMGL=4): %1</source>
        <translation>список не закончился (AT+CMGL=4): %1</translation>
    </message>
    <message>
        <source>%1 is not a store index</source>
        <translation>%1 — не номер в хранилище</translation>
    </message>
    <message>
        <source>reading message %1 failed: %2</source>
        <translation>не удалось прочитать сообщение %1: %2</translation>
    </message>
    <message>
        <source>there is no message at index %1</source>
        <translation>под номером %1 нет сообщения</translation>
    </message>
    <message>
        <source>deleting message %1 failed: %2</source>
        <translation>не удалось удалить сообщение %1: %2</translation>
    </message>
</context>
<context>
    <name>zelmodems::MessageStorePrivate</name>
    <message>
        <source>the modem refused PDU mode (AT+CMGF=0): %1</source>
        <translation>модем отказался от режима PDU (AT+CMGF=0): %1</translation>
    </message>
    <message>
        <source>no answer</source>
        <translation>нет ответа</translation>
    </message>
</context>
<context>
    <name>zelmodems::SmsSender</name>
    <message>
        <source>refused, nothing sent: %1</source>
        <translation>отвергнуто, ничего не отправлено: %1</translation>
    </message>
    <message>
        <source>the modem refused PDU mode (AT+CMGF=0): %1</source>
        <translation>модем отверг режим PDU (AT+CMGF=0): %1</translation>
    </message>
    <message>
        <source>part %1 of %2: the modem gave no prompt for the PDU: %3%4</source>
        <translation>часть %1 из %2: модем не дал приглашения для PDU: %3%4</translation>
    </message>
    <message>
        <source>part %1 of %2 not confirmed within %3 s — it may still arrive; check before sending again%4</source>
        <translation>часть %1 из %2 не подтверждена за %3 с — она ещё может дойти; проверьте, прежде чем отправлять снова%4</translation>
    </message>
    <message>
        <source>part %1 of %2 was refused: %3%4</source>
        <translation>часть %1 из %2 отвергнута: %3%4</translation>
    </message>
    <message>
        <source>part %1 of %2: the modem gave no prompt for the PDU, nothing of it was sent: %3%4</source>
        <translation>часть %1 из %2: модем не выдал приглашение для PDU, ничего из неё не отправлено: %3%4</translation>
    </message>
    <message>
        <source>part %1 of %2: the modem said OK without a message reference — it may still arrive; check before sending again%3</source>
        <translation>часть %1 из %2: модем ответил OK без номера сообщения — оно может ещё дойти; проверьте, прежде чем отправлять снова%3</translation>
    </message>
    <message>
        <source>part %1 of %2 not confirmed within %3 s — it may still arrive; check before sending again: %4%5</source>
        <translation>часть %1 из %2 не подтверждена за %3 с — она может ещё дойти; проверьте, прежде чем отправлять снова: %4%5</translation>
    </message>
</context>
<context>
    <name>zelmodems::SmsSenderPrivate</name>
    <message>
        <source> (parts 1 to %1 were sent, references %2)</source>
        <translation> (части с 1 по %1 отправлены, номера %2)</translation>
    </message>
</context>
<context>
    <name>zelmodems::LineChannel</name>
    <message>
        <source>cancelled</source>
        <translation>отменено</translation>
    </message>
    <message>
        <source>the modem waits for message text</source>
        <translation>модем ждёт текст сообщения</translation>
    </message>
    <message>
        <source>no answer within %1 ms</source>
        <translation>нет ответа за %1 мс</translation>
    </message>
    <message>
        <source>the port closed (the modem was unplugged or reset)</source>
        <translation>порт закрылся (модем отключили или он перезапустился)</translation>
    </message>
    <message>
        <source>the answer ran past %1 bytes without a result code: not a modem&apos;s answer</source>
        <translation>ответ превысил %1 байт без кода результата: это не ответ модема</translation>
    </message>
</context>
<context>
    <name>zelmodems::PortCatalogue</name>
    <message>
        <source>no such port: %1</source>
        <translation>нет такого порта: %1</translation>
    </message>
    <message>
        <source>%1 is in use by another program (%2)</source>
        <translation>%1 занят другой программой (%2)</translation>
    </message>
</context>
<context>
    <name>zelmodems::SignalQuality</name>
    <message>
        <source>no modem given</source>
        <translation>модем не указан</translation>
    </message>
    <message>
        <source>the modem did not report the signal level: %1</source>
        <translation>модем не сообщил уровень сигнала: %1</translation>
    </message>
    <message>
        <source>the modem did not report the signal level: no +CSQ in its answer</source>
        <translation>модем не сообщил уровень сигнала: в ответе нет +CSQ</translation>
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
        <source>unknown</source>
        <translation>неизвестен</translation>
    </message>
</context>
<context>
    <name>zelmodems::OwnNumber</name>
    <message>
        <source>the operator&apos;s reply holds no telephone number (the network may have refused the request); it said: &quot;%1&quot;</source>
        <translation>в ответе оператора нет телефонного номера (сеть могла отклонить запрос); ответ: «%1»</translation>
    </message>
    <message>
        <source>the request %1 did not go through: %2</source>
        <translation>запрос %1 не прошёл: %2</translation>
    </message>
    <message>
        <source>the operator&apos;s reply held no telephone number</source>
        <translation>в ответе оператора нет номера телефона</translation>
    </message>
    <message>
        <source>cannot list the stored messages: %1</source>
        <translation>не удаётся получить список сохранённых сообщений: %1</translation>
    </message>
    <message>
        <source>the operator&apos;s message %1 stays on the modem: %2</source>
        <translation>сообщение оператора %1 остаётся в модеме: %2</translation>
    </message>
    <message>
        <source>no message with a telephone number came within %1 s of %2</source>
        <translation>за %1 с после %2 не пришло сообщение с номером телефона</translation>
    </message>
</context>
<context>
    <name>zelmodems::SimIdentity</name>
    <message>
        <source>no modem given</source>
        <translation>модем не указан</translation>
    </message>
    <message>
        <source>the modem gave no IMSI: %1</source>
        <translation>модем не сообщил IMSI: %1</translation>
    </message>
</context>
<context>
    <name>zelmodems::ModemError</name>
    <message>
        <source>unassigned (unallocated) number</source>
        <translation>номер не назначен</translation>
    </message>
    <message>
        <source>operator determined barring</source>
        <translation>запрет, установленный оператором</translation>
    </message>
    <message>
        <source>call barred</source>
        <translation>вызов запрещён</translation>
    </message>
    <message>
        <source>short message transfer rejected</source>
        <translation>передача SMS отклонена</translation>
    </message>
    <message>
        <source>destination out of service</source>
        <translation>получатель вне обслуживания</translation>
    </message>
    <message>
        <source>unidentified subscriber</source>
        <translation>абонент не опознан</translation>
    </message>
    <message>
        <source>facility rejected</source>
        <translation>услуга отклонена</translation>
    </message>
    <message>
        <source>unknown subscriber</source>
        <translation>неизвестный абонент</translation>
    </message>
    <message>
        <source>network out of order</source>
        <translation>сеть не работает</translation>
    </message>
    <message>
        <source>temporary failure</source>
        <translation>временный сбой</translation>
    </message>
    <message>
        <source>congestion</source>
        <translation>перегрузка</translation>
    </message>
    <message>
        <source>resources unavailable</source>
        <translation>ресурсы недоступны</translation>
    </message>
    <message>
        <source>requested facility not subscribed</source>
        <translation>запрошенная услуга не подключена</translation>
    </message>
    <message>
        <source>requested facility not implemented</source>
        <translation>запрошенная услуга не реализована</translation>
    </message>
    <message>
        <source>invalid short message transfer reference value</source>
        <translation>неверный номер передачи SMS</translation>
    </message>
    <message>
        <source>invalid message</source>
        <translation>неверное сообщение</translation>
    </message>
    <message>
        <source>invalid mandatory information</source>
        <translation>неверные обязательные данные</translation>
    </message>
    <message>
        <source>message type non-existent or not implemented</source>
        <translation>тип сообщения не существует или не реализован</translation>
    </message>
    <message>
        <source>message not compatible with short message protocol state</source>
        <translation>сообщение не соответствует состоянию протокола SMS</translation>
    </message>
    <message>
        <source>information element non-existent or not implemented</source>
        <translation>элемент данных не существует или не реализован</translation>
    </message>
    <message>
        <source>protocol error</source>
        <translation>ошибка протокола</translation>
    </message>
    <message>
        <source>interworking error</source>
        <translation>ошибка взаимодействия сетей</translation>
    </message>
    <message>
        <source>telematic interworking not supported</source>
        <translation>телематическое взаимодействие не поддерживается</translation>
    </message>
    <message>
        <source>TPDU not supported</source>
        <translation>TPDU не поддерживается</translation>
    </message>
    <message>
        <source>SC busy</source>
        <translation>SMS-центр занят</translation>
    </message>
    <message>
        <source>no SC subscription</source>
        <translation>нет подписки на SMS-центр</translation>
    </message>
    <message>
        <source>SC system failure</source>
        <translation>сбой SMS-центра</translation>
    </message>
    <message>
        <source>invalid SME address</source>
        <translation>неверный адрес получателя</translation>
    </message>
    <message>
        <source>destination SME barred</source>
        <translation>получатель заблокирован</translation>
    </message>
    <message>
        <source>SIM SMS storage full</source>
        <translation>память SMS на SIM заполнена</translation>
    </message>
    <message>
        <source>unspecified error cause</source>
        <translation>причина ошибки не указана</translation>
    </message>
    <message>
        <source>ME failure</source>
        <translation>сбой модема</translation>
    </message>
    <message>
        <source>SMS service of ME reserved</source>
        <translation>служба SMS модема зарезервирована</translation>
    </message>
    <message>
        <source>invalid PDU mode parameter</source>
        <translation>неверный параметр режима PDU</translation>
    </message>
    <message>
        <source>invalid text mode parameter</source>
        <translation>неверный параметр текстового режима</translation>
    </message>
    <message>
        <source>invalid memory index</source>
        <translation>неверный индекс памяти</translation>
    </message>
    <message>
        <source>SMSC address unknown</source>
        <translation>адрес SMS-центра неизвестен</translation>
    </message>
    <message>
        <source>no +CNMA acknowledgement expected</source>
        <translation>подтверждение +CNMA не ожидается</translation>
    </message>
    <message>
        <source>unknown cause</source>
        <translation>неизвестная причина</translation>
    </message>
    <message>
        <source>phone failure</source>
        <translation>сбой телефона</translation>
    </message>
    <message>
        <source>no connection to phone</source>
        <translation>нет связи с телефоном</translation>
    </message>
    <message>
        <source>phone-adaptor link reserved</source>
        <translation>канал адаптера телефона занят</translation>
    </message>
    <message>
        <source>operation not allowed</source>
        <translation>операция не разрешена</translation>
    </message>
    <message>
        <source>operation not supported</source>
        <translation>операция не поддерживается</translation>
    </message>
    <message>
        <source>PH-SIM PIN required</source>
        <translation>нужен PIN PH-SIM</translation>
    </message>
    <message>
        <source>PH-FSIM PIN required</source>
        <translation>нужен PIN PH-FSIM</translation>
    </message>
    <message>
        <source>PH-FSIM PUK required</source>
        <translation>нужен PUK PH-FSIM</translation>
    </message>
    <message>
        <source>SIM not inserted</source>
        <translation>SIM-карта не вставлена</translation>
    </message>
    <message>
        <source>SIM PIN required</source>
        <translation>нужен PIN SIM-карты</translation>
    </message>
    <message>
        <source>SIM PUK required</source>
        <translation>нужен PUK SIM-карты</translation>
    </message>
    <message>
        <source>SIM failure</source>
        <translation>сбой SIM-карты</translation>
    </message>
    <message>
        <source>SIM busy</source>
        <translation>SIM-карта занята</translation>
    </message>
    <message>
        <source>SIM wrong</source>
        <translation>неподходящая SIM-карта</translation>
    </message>
    <message>
        <source>incorrect password</source>
        <translation>неверный пароль</translation>
    </message>
    <message>
        <source>SIM PIN2 required</source>
        <translation>нужен PIN2 SIM-карты</translation>
    </message>
    <message>
        <source>SIM PUK2 required</source>
        <translation>нужен PUK2 SIM-карты</translation>
    </message>
    <message>
        <source>memory full</source>
        <translation>память заполнена</translation>
    </message>
    <message>
        <source>invalid index</source>
        <translation>неверный индекс</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>не найдено</translation>
    </message>
    <message>
        <source>memory failure</source>
        <translation>сбой памяти</translation>
    </message>
    <message>
        <source>text string too long</source>
        <translation>слишком длинная текстовая строка</translation>
    </message>
    <message>
        <source>invalid characters in text string</source>
        <translation>недопустимые символы в текстовой строке</translation>
    </message>
    <message>
        <source>dial string too long</source>
        <translation>слишком длинная строка набора</translation>
    </message>
    <message>
        <source>invalid characters in dial string</source>
        <translation>недопустимые символы в строке набора</translation>
    </message>
    <message>
        <source>no network service</source>
        <translation>нет обслуживания сетью</translation>
    </message>
    <message>
        <source>network timeout</source>
        <translation>сеть не ответила вовремя</translation>
    </message>
    <message>
        <source>network not allowed, emergency calls only</source>
        <translation>сеть не разрешена, только экстренные вызовы</translation>
    </message>
    <message>
        <source>network personalisation PIN required</source>
        <translation>нужен PIN персонализации сети</translation>
    </message>
    <message>
        <source>network personalisation PUK required</source>
        <translation>нужен PUK персонализации сети</translation>
    </message>
    <message>
        <source>network subset personalisation PIN required</source>
        <translation>нужен PIN персонализации подмножества сети</translation>
    </message>
    <message>
        <source>network subset personalisation PUK required</source>
        <translation>нужен PUK персонализации подмножества сети</translation>
    </message>
    <message>
        <source>service provider personalisation PIN required</source>
        <translation>нужен PIN персонализации поставщика услуг</translation>
    </message>
    <message>
        <source>service provider personalisation PUK required</source>
        <translation>нужен PUK персонализации поставщика услуг</translation>
    </message>
    <message>
        <source>corporate personalisation PIN required</source>
        <translation>нужен корпоративный PIN персонализации</translation>
    </message>
    <message>
        <source>corporate personalisation PUK required</source>
        <translation>нужен корпоративный PUK персонализации</translation>
    </message>
    <message>
        <source>hidden key required</source>
        <translation>нужен скрытый ключ</translation>
    </message>
    <message>
        <source>EAP method not supported</source>
        <translation>метод EAP не поддерживается</translation>
    </message>
    <message>
        <source>incorrect parameters</source>
        <translation>неверные параметры</translation>
    </message>
    <message>
        <source>unknown error</source>
        <translation>неизвестная ошибка</translation>
    </message>
    <message>
        <source>illegal MS</source>
        <translation>недопустимая мобильная станция</translation>
    </message>
    <message>
        <source>illegal ME</source>
        <translation>недопустимое оборудование</translation>
    </message>
    <message>
        <source>GPRS services not allowed</source>
        <translation>услуги GPRS не разрешены</translation>
    </message>
    <message>
        <source>PLMN not allowed</source>
        <translation>сеть PLMN не разрешена</translation>
    </message>
    <message>
        <source>location area not allowed</source>
        <translation>зона местоположения не разрешена</translation>
    </message>
    <message>
        <source>roaming not allowed in this location area</source>
        <translation>роуминг в этой зоне не разрешён</translation>
    </message>
    <message>
        <source>service option not supported</source>
        <translation>вариант услуги не поддерживается</translation>
    </message>
    <message>
        <source>requested service option not subscribed</source>
        <translation>запрошенный вариант услуги не подключён</translation>
    </message>
    <message>
        <source>service option temporarily out of order</source>
        <translation>вариант услуги временно не работает</translation>
    </message>
    <message>
        <source>unspecified GPRS error</source>
        <translation>неуточнённая ошибка GPRS</translation>
    </message>
    <message>
        <source>PDP authentication failure</source>
        <translation>ошибка аутентификации PDP</translation>
    </message>
    <message>
        <source>invalid mobile class</source>
        <translation>недопустимый класс мобильной станции</translation>
    </message>
    <message>
        <source>manufacturer specific</source>
        <translation>код производителя</translation>
    </message>
</context>
<context>
    <name>zelmodems::ModemWatcher</name>
    <message>
        <source>cannot watch the system&apos;s devices (no udev monitor here, as in a container): give the ports to watch, or a folder of links</source>
        <translation>не удаётся следить за устройствами системы (здесь нет монитора udev, как в контейнере): укажите порты или папку со ссылками</translation>
    </message>
    <message>
        <source>no folder %1 to watch</source>
        <translation>нет папки %1 для наблюдения</translation>
    </message>
</context>
<context>
    <name>zelmodems::ModemWorker</name>
    <message>
        <source>There is no %1: check the name, or plug the modem in</source>
        <translation>Нет %1: проверьте имя или подключите модем</translation>
    </message>
    <message>
        <source>%1 is in use by %2; stop that program first</source>
        <translation>%1 занят: %2; сначала остановите эту программу</translation>
    </message>
    <message>
        <source>no answer to AT</source>
        <translation>нет ответа на AT</translation>
    </message>
    <message>
        <source>No modem answers on %1: %2</source>
        <translation>На %1 не отвечает модем: %2</translation>
    </message>
    <message>
        <source>The modem is not open</source>
        <translation>Модем не открыт</translation>
    </message>
    <message>
        <source>The modem is gone (unplugged or reset); open it again when it returns</source>
        <translation>Модем пропал (отключён или перезапущен); откройте его снова, когда он вернётся</translation>
    </message>
    <message>
        <source>The modem was closed before this was done</source>
        <translation>Модем закрыт раньше, чем это было сделано</translation>
    </message>
    <message>
        <source>Cancelled before it began</source>
        <translation>Отменено до начала</translation>
    </message>
    <message>
        <source>a command may not hold a line end, Ctrl-Z or ESC</source>
        <translation>команда не может содержать конец строки, Ctrl-Z или ESC</translation>
    </message>
    <message>
        <source>Refused, nothing sent: %1</source>
        <translation>Отказано, ничего не отправлено: %1</translation>
    </message>
    <message>
        <source>AT%1: %2</source>
        <translation>AT%1: %2</translation>
    </message>
    <message>
        <source>Cancelled; the USSD session was ended</source>
        <translation>Отменено; сеанс USSD завершён</translation>
    </message>
</context>
<context>
    <name>zelmodems::Registration</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>the modem&apos;s answer to AT+%1? holds no registration state</source>
        <translation>в ответе модема на AT+%1? нет состояния регистрации</translation>
    </message>
    <message>
        <source>the modem did not report its registration (AT+%1?): %2</source>
        <translation>модем не сообщил о регистрации (AT+%1?): %2</translation>
    </message>
    <message>
        <source>no report</source>
        <translation>нет сообщения</translation>
    </message>
    <message>
        <source>not registered</source>
        <translation>не зарегистрирован</translation>
    </message>
    <message>
        <source>registered, home network</source>
        <translation>зарегистрирован, домашняя сеть</translation>
    </message>
    <message>
        <source>searching for a network</source>
        <translation>поиск сети</translation>
    </message>
    <message>
        <source>registration denied</source>
        <translation>в регистрации отказано</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>неизвестно</translation>
    </message>
    <message>
        <source>registered, roaming</source>
        <translation>зарегистрирован, роуминг</translation>
    </message>
    <message>
        <source>registered for SMS only, home network</source>
        <translation>зарегистрирован только для SMS, домашняя сеть</translation>
    </message>
    <message>
        <source>registered for SMS only, roaming</source>
        <translation>зарегистрирован только для SMS, роуминг</translation>
    </message>
    <message>
        <source>emergency calls only</source>
        <translation>только экстренные вызовы</translation>
    </message>
</context>
<context>
    <name>zelmodems::NetworkOperator</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>the modem did not name its network: %1</source>
        <translation>модем не назвал свою сеть: %1</translation>
    </message>
</context>
<context>
    <name>zelmodems::SignalMeasures</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>the modem did not report its measurements: %1</source>
        <translation>модем не сообщил измерения: %1</translation>
    </message>
</context>
<context>
    <name>zelmodems::SimLock</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>%1 was not sent: the SIM&apos;s state is &quot;%2&quot;, not &quot;%3&quot;</source>
        <translation>%1 не отправлен: состояние SIM-карты «%2», а не «%3»</translation>
    </message>
    <message>
        <source>%1 was not sent: the modem reports one attempt left, and a wrong code would block the SIM; allow the last attempt to try it</source>
        <translation>%1 не отправлен: модем сообщает об одной оставшейся попытке, и неверный код заблокирует SIM-карту; чтобы попробовать, разрешите последнюю попытку</translation>
    </message>
    <message>
        <source>%1 was not sent: the modem reports no attempt left</source>
        <translation>%1 не отправлен: модем сообщает, что попыток не осталось</translation>
    </message>
    <message>
        <source>%1 was refused: %2</source>
        <translation>%1 отклонён: %2</translation>
    </message>
    <message>
        <source>; attempts left: %1</source>
        <translation>; осталось попыток: %1</translation>
    </message>
    <message>
        <source>the PIN</source>
        <translation>PIN</translation>
    </message>
    <message>
        <source>a PIN is 4 to 8 digits; nothing was sent</source>
        <translation>PIN — это от 4 до 8 цифр; ничего не отправлено</translation>
    </message>
    <message>
        <source>the PUK</source>
        <translation>PUK</translation>
    </message>
    <message>
        <source>a PUK is 8 digits; nothing was sent</source>
        <translation>PUK — это 8 цифр; ничего не отправлено</translation>
    </message>
    <message>
        <source>the new PIN must be 4 to 8 digits; nothing was sent</source>
        <translation>новый PIN должен состоять из 4–8 цифр; ничего не отправлено</translation>
    </message>
    <message>
        <source>the PIN change</source>
        <translation>запрос смены PIN</translation>
    </message>
</context>
<context>
    <name>zelmodems::SimStatus</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>the modem did not say what its SIM waits for: %1</source>
        <translation>модем не сказал, чего ждёт SIM-карта: %1</translation>
    </message>
    <message>
        <source>the modem refused AT+CPIN? without saying why (numbered errors are off: AT+CMEE=1 turns them on)</source>
        <translation>модем отказал в AT+CPIN?, не объяснив причины (коды ошибок выключены: их включает AT+CMEE=1)</translation>
    </message>
    <message>
        <source>the modem&apos;s answer to AT+CPIN? names no SIM state: %1</source>
        <translation>ответ модема на AT+CPIN? не называет состояния SIM-карты: %1</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>готова</translation>
    </message>
    <message>
        <source>SIM PIN required</source>
        <translation>нужен PIN SIM-карты</translation>
    </message>
    <message>
        <source>SIM PUK required (the PIN is blocked)</source>
        <translation>нужен PUK SIM-карты (PIN заблокирован)</translation>
    </message>
    <message>
        <source>SIM PIN2 required</source>
        <translation>нужен PIN2 SIM-карты</translation>
    </message>
    <message>
        <source>SIM PUK2 required</source>
        <translation>нужен PUK2 SIM-карты</translation>
    </message>
    <message>
        <source>the modem is locked to another SIM (PH-SIM PIN)</source>
        <translation>модем привязан к другой SIM-карте (PH-SIM PIN)</translation>
    </message>
    <message>
        <source>the modem is locked to another network</source>
        <translation>модем привязан к другой сети</translation>
    </message>
    <message>
        <source>no SIM inserted</source>
        <translation>SIM-карта не вставлена</translation>
    </message>
    <message>
        <source>the SIM does not work (SIM failure)</source>
        <translation>SIM-карта не работает (сбой SIM)</translation>
    </message>
    <message>
        <source>the SIM is still starting</source>
        <translation>SIM-карта ещё запускается</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>неизвестно</translation>
    </message>
</context>
<context>
    <name>zelmodems::StoreUse</name>
    <message>
        <source>no modem given</source>
        <translation>модем не задан</translation>
    </message>
    <message>
        <source>the modem&apos;s answer to AT+CPMS? names no store</source>
        <translation>ответ модема на AT+CPMS? не называет хранилища</translation>
    </message>
    <message>
        <source>the modem did not say how full its message stores are: %1</source>
        <translation>модем не сказал, насколько заполнены хранилища сообщений: %1</translation>
    </message>
</context>
</TS>
