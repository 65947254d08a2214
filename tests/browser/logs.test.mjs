// An administrator reads the logs and the archive, and acts on what is there.
import assert from 'node:assert/strict'
import { spawn } from 'node:child_process'
import { existsSync, mkdtempSync, readFileSync } from 'node:fs'
import { tmpdir } from 'node:os'
import { join } from 'node:path'
import { test } from 'node:test'
import { built, openPage, picture, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

test('an address is picked from the log and black-listed', async () => {
  await openPage(page, 'IP log', 'iplog')
  const log = page.getByRole('listbox', { name: 'Logged addresses' })
  await log.focus()
  await page.keyboard.press('ArrowUp')
  const field = page.getByLabel('IP number', { exact: true })
  await page.waitForFunction(() => document.querySelector('[data-control$="-IPNumber"] input').value !== '')
  const address = await field.inputValue()
  await page.getByRole('group', { name: 'IP Lists' }).getByRole('button', { name: 'Add to Blacklist' }).click()
  await console.becomes(`select count(*) from Blackhost where IPNumber='${address}'`, '1')
  await console.becomes(`select count(*) from iplog where IPNumber='${address}' and status<>2`, '0')
  await console.becomes(`select count(*) from predatalog where IPNumber='${address}' and status<>2`, '0')
})

test('a log is cleared only after a question that names the number', async () => {
  await openPage(page, 'IP log', 'iplog')
  const count = () => console.sql('select count(*) from iplog')
  const before = count()
  assert.ok(Number(before) > 1000)
  const clear = page.getByRole('main').getByRole('button', { name: 'Clear List' })
  assert.match(await clear.getAttribute('class'), /danger/)
  await clear.click()
  const question = page.getByRole('alertdialog', { name: 'Clear List' })
  await question.getByText(`Delete ${Number(before).toLocaleString('en')} rows of the logs?`).waitFor()
  await picture(page, 'clear-question')
  assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Cancel')
  await page.keyboard.press('Enter')
  await question.waitFor({ state: 'detached' })
  assert.equal(count(), before)
  // Of a part of the log, the number is that of the part.
  const black = console.sql('select count(*) from iplog where status=2')
  await page.getByRole('button', { name: 'Show blacklisted IPs' }).click()
  await clear.click()
  await question.getByText(`Delete ${Number(black).toLocaleString('en')} rows of the logs?`).waitFor()
  await question.getByRole('button', { name: 'Clear List' }).click()
  await console.becomes('select count(*) from iplog where status=2', '0')
  assert.equal(count(), String(Number(before) - Number(black)))
})

test('arrow keys walk the keyword log, and the fields follow', async () => {
  await openPage(page, 'Keyword log', 'keywordlog')
  const log = page.getByRole('listbox', { name: 'Rejected or marked messages' })
  await log.focus()
  await page.keyboard.press('Home')
  const newest = console.sql('select keyword from subjectlog order by servertime desc limit 1')
  await page.waitForFunction(text => document.querySelector('[data-control$="-keyw"] input').value === text, newest)
})

test('the statistics show the same numbers as bars and as text', async () => {
  await openPage(page, 'Statistics', 'stati')
  const total = console.sql('select count(*) from iplog')
  const bars = page.getByRole('list', { name: 'Report' })
  await bars.getByText('total incoming connections').waitFor()
  assert.equal(await bars.locator('.count-number').first().textContent(), Number(total).toLocaleString('en'))
  assert.match(await page.getByRole('textbox', { name: 'Report' }).inputValue(), new RegExp(`^${total} total`))
})

test('a mail is read, exported, and answered to a mail server', async t => {
  const folder = mkdtempSync(join(tmpdir(), 'zrl-sink-'))
  const mails = join(folder, 'mails')
  const sink = spawn(built('smtp_sink'), [mails])
  // One that still ran would keep the file from ending.
  t.after(() => sink.kill())
  const port = await new Promise(resolve => sink.stdout.once('data', data => resolve(/\d+/.exec(String(data))[0])))
  console.sql(`insert into marchive (mid,subject,sender,servertime,email) values ('<reading@test>',
    '=?utf-8?B?R3LDvMOfZQ==?=', 'ann@spam.example', '2099-01-01 00:00:00',
    'From: Ann <ann@spam.example>' || char(13,10) || 'Subject: =?utf-8?B?R3LDvMOfZQ==?=' || char(13,10) ||
    'Content-Type: text/html; charset=utf-8' || char(13,10,13,10) ||
    '<p>Buy <b>now</b></p><script>alert(1)</script>' || char(13,10))`)
  console.sql("insert or replace into konf (ID,value) values ('forwardaddress','127.0.0.1')")
  console.sql(`insert or replace into konf (ID,value) values ('forwardport','${port}')`)
  await openPage(page, 'Mail archive', 'monitor')
  await page.waitForFunction(() => document.querySelector('[data-control$="-msubject"] input').value === 'Grüße')
  const body = page.getByRole('textbox', { name: 'HTMLbody' })
  assert.match(await body.inputValue(), /^Buy now\s*$/)
  await picture(page, 'archive')

  await page.getByRole('button', { name: 'save Mail' }).click()
  const box = page.getByRole('alertdialog', { name: 'Email Export' })
  await box.waitFor()
  const told = await box.getByText('exported to').textContent()
  const path = /exported to (.*)$/.exec(told)[1].trim()
  assert.ok(existsSync(path), path)
  await box.getByRole('button', { name: 'OK' }).click()

  await page.getByRole('button', { name: 'reply Mail' }).click()
  const composer = page.getByRole('dialog').filter({ has: page.getByLabel('Recipient') })
  await composer.waitFor()
  await picture(page, 'composer')
  assert.equal(await composer.getByLabel('Subject', { exact: true }).inputValue(), 'Re: Grüße')
  await composer.getByLabel('Sender', { exact: true }).fill('admin@here.example')
  await composer.getByRole('button', { name: 'Send', exact: true }).click()
  for (let i = 0; i < 1200 && !existsSync(mails); ++i) await page.waitForTimeout(50)
  assert.match(readFileSync(mails, 'utf8'), /ann@spam\.example/)
  await composer.getByRole('button', { name: 'Cancel' }).click()
})
