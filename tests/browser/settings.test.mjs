// What the settings pages store of what is typed, and what they keep to themselves.
import assert from 'node:assert/strict'
import { readFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { openPage, withConsole } from './console.mjs'

let console
let page

withConsole({}, started => ({ console, page } = started))

test('the lines of a typed banner are stored with the line ends of SMTP', async () => {
  await openPage(page, 'Reply texts', 'strings')
  const banner = page.getByRole('textbox', { name: 'Banner' })
  await banner.fill('220-one')
  await banner.press('End')
  await banner.press('Enter')
  await banner.pressSequentially('220 two')
  await page.getByRole('button', { name: 'Save' }).click()
  await console.becomes("select hex(value) from konf where ID='welcome'", Buffer.from('220-one\r\n220 two').toString('hex').toUpperCase())
  assert.equal(await banner.inputValue(), '220-one\n220 two')
  // What the console sets has the caret's lines too, and stays as it is when it is stored again.
  await page.getByRole('button', { name: 'Default banner' }).click()
  await page.getByRole('alertdialog').getByRole('button', { name: 'Default banner' }).click()
  await page.getByRole('button', { name: 'Save' }).click()
  await console.becomes("select length(value) - length(replace(value, char(13, 10), '')) from konf where ID='welcome'", '8')
})

test('a password is neither shown nor kept in the records', async () => {
  await openPage(page, 'POP3 accounts', 'pop_config')
  await page.getByRole('textbox', { name: 'User name' }).fill('me')
  await page.getByRole('textbox', { name: 'Server' }).fill('pop.example')
  const password = page.getByLabel('Password', { exact: true })
  assert.equal(await password.getAttribute('type'), 'password')
  await password.fill('pa55word')
  await page.getByRole('button', { name: 'Save account' }).click()
  await console.becomes('select entry, password from pop3', 'me,pop.example|pa55word')
  await page.getByRole('button', { name: 'Activity' }).click()
  const record = page.getByRole('listbox', { name: 'Activity' })
  await record.getByText("UPDATE pop3 set [password]='********' where").waitFor()
  assert.ok(!(await page.locator('body').innerText()).includes('pa55word'))
  const log = readFileSync(join(console.folder, 'secrets/audit.log'), 'utf8')
  assert.match(log, /set \[password\]='\*{8}' where entry='me,pop\.example'\n/)
  assert.ok(!log.includes('pa55word'))
})
