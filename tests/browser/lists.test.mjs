// An administrator keeps lists: the domain page from end to end, and a look at every list page.
import assert from 'node:assert/strict'
import { existsSync, readFileSync, writeFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { drop, openPage, picture, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

test('a domain is black-listed, seen, and taken off again', async () => {
  console.sql("INSERT INTO whitelist (entry) VALUES ('moved.example')")
  await openPage(page, 'Domains', 'domainbw')
  await picture(page, 'domains')
  const black = page.getByRole('group', { name: 'Black list' })
  await page.getByLabel('Domain', { exact: true }).fill(' moved.example ')
  await black.getByRole('button', { name: 'Add' }).click()
  await console.becomes("select count(*) from blacklist where entry='moved.example'", '1')
  await console.becomes("select count(*) from whitelist where entry='moved.example'", '0')
  await console.becomes("select value from konf where ID='version'", console.run('registry', 'get', 'HKLM\\SOFTWARE\\Mirvan\\ProductVersion').trim())
  assert.equal(console.run('registry', 'get', 'HKLM\\SOFTWARE\\Mirvan\\reloadblack').trim(), '1')
  assert.equal(console.run('registry', 'get', 'HKLM\\SOFTWARE\\Mirvan\\reloadwhite').trim(), '1')

  await black.getByRole('textbox', { name: /^Filter/ }).fill('moved')
  await black.getByRole('option', { name: 'moved.example' }).click()
  await black.getByRole('button', { name: 'Remove' }).click()
  await console.becomes("select count(*) from blacklist where entry='moved.example'", '0')
})

const openTransfer = async () => {
  await page.getByRole('group', { name: 'Black list' }).getByRole('button', { name: 'Import and export...' }).click()
  const dialog = page.getByRole('dialog', { name: 'Domain Blacklist' })
  await dialog.waitFor()
  return dialog
}

test('a list goes to the own computer and comes back from there, with counts', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const dialog = await openTransfer()
  await picture(page, 'transfer')
  assert.equal(await dialog.getByRole('listbox').count(), 0)
  const fetch = async () => {
    const [download] = await Promise.all([
      page.waitForEvent('download'),
      dialog.getByRole('button', { name: 'To my computer' }).click(),
    ])
    assert.equal(download.suggestedFilename(), 'blacklist.txt')
    return readFileSync(await download.path(), 'utf8')
  }
  const whole = await fetch()
  assert.equal(whole.split('\n').length - 1, Number(console.sql('select count(distinct entry) from blacklist')))
  assert.equal(await fetch(), whole)
  assert.ok(!existsSync(join(console.folder, 'lists', 'blacklist.txt')))

  await dialog.getByRole('radio', { name: 'Import' }).click()
  const send = async (name, text) => {
    const [chooser] = await Promise.all([
      page.waitForEvent('filechooser'),
      dialog.getByRole('button', { name: 'From my computer…' }).click(),
    ])
    await chooser.setFiles({ name, mimeType: 'text/plain', buffer: Buffer.from(text) })
  }
  const some = Array.from({ length: 1200 }, (_, i) => `sent${i}.example\n`).join('')
  await send('more.txt', `# of a friend\n${some}${whole.split('\n')[0]}\n`)
  await dialog.getByText('Added: 1,200, there already: 1, comments: 1, lines without an entry: 0').waitFor()
  await picture(page, 'transfer-counts')

  await dialog.getByRole('radio', { name: 'Delete' }).click()
  await send('less.txt', 'sent7.example\n')
  await page.getByRole('alertdialog').getByRole('button', { name: 'Delete' }).click()
  await dialog.getByText('Removed: 1, comments: 0, lines without an entry: 0', { exact: true }).waitFor()
  assert.equal(console.sql("select count(*) from blacklist where entry like 'sent%'"), '1199')
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
})

test('a file that is dropped on a list is imported once somebody has agreed', async () => {
  // A list takes no file while its dialog is still being closed.
  await page.locator('#c-domainbw-imexblack[aria-busy="false"]').waitFor()
  await drop(page, '#c-domainbw-List2', 'dropped.txt', 'dropped.example\n')
  const dialog = page.getByRole('dialog', { name: 'Domain Blacklist' })
  await dialog.getByText('Import “dropped.txt” into “Domain Blacklist”?').waitFor()
  await picture(page, 'dropped')
  assert.equal(console.sql("select count(*) from blacklist where entry='dropped.example'"), '0')
  await dialog.getByRole('button', { name: 'Import', exact: true }).click()
  await dialog.getByText('Added: 1, there already: 0, comments: 0, lines without an entry: 0', { exact: true }).waitFor()
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
  await page.getByRole('group', { name: 'Black list' }).getByRole('textbox', { name: /^Filter/ }).fill('dropped.example')
  await page.getByRole('option', { name: 'dropped.example' }).waitFor()

  // One that nobody agreed to is not asked about again.
  // A list takes no file while its dialog is still being closed.
  await page.locator('#c-domainbw-imexblack[aria-busy="false"]').waitFor()
  await drop(page, '#c-domainbw-List2', 'unwanted.txt', 'unwanted.example\n')
  await dialog.getByText('unwanted.txt').waitFor()
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
  await openTransfer()
  await dialog.getByRole('button', { name: 'To my computer' }).waitFor()
  assert.equal(console.sql("select count(*) from blacklist where entry='unwanted.example'"), '0')
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
})

test('the folders of the console stand behind a button that stays as it was left, with paths of this system', async () => {
  let dialog = await openTransfer()
  await dialog.getByRole('button', { name: /^Files on the console/ }).click()
  await picture(page, 'transfer-folders')
  const source = dialog.getByLabel('File', { exact: true })
  const file = join(console.folder, 'lists', 'blacklist.txt')
  assert.equal(await source.inputValue(), file)
  await dialog.getByRole('button', { name: 'Export', exact: true }).click()
  await dialog.getByRole('option', { name: 'blacklist.txt' }).waitFor()
  assert.match(readFileSync(file, 'utf8'), /\.example\n/)

  const other = join(console.folder, 'lists', 'other.txt')
  writeFileSync(other, 'imported.example\n')
  await dialog.getByRole('radio', { name: 'Import' }).click()
  await source.fill(other)
  await dialog.getByRole('button', { name: 'Import', exact: true }).click()
  await dialog.getByText('Added: 1, there already: 0, comments: 0, lines without an entry: 0', { exact: true }).waitFor()
  assert.equal(await source.inputValue(), other)
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
  dialog = await openTransfer()
  await dialog.getByRole('option', { name: 'other.txt' }).waitFor()
  await dialog.getByRole('button', { name: /^Files on the console/ }).click()
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
})
