// An administrator keeps lists: the domain page from end to end, and a look at every list page.
import assert from 'node:assert/strict'
import { existsSync, readFileSync, writeFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

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

test('a list goes to a file and comes back through the transfer dialog', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const black = page.getByRole('group', { name: 'Black list' })
  await black.getByRole('button', { name: 'Import and export...' }).click()
  const dialog = page.getByRole('dialog', { name: 'Domain Blacklist' })
  await dialog.waitFor()
  await picture(page, 'transfer')
  await dialog.getByRole('button', { name: 'Export', exact: true }).click()
  const file = join(console.folder, 'lists', 'blacklist.txt')
  await dialog.getByRole('option', { name: 'blacklist.txt' }).waitFor()
  assert.ok(existsSync(file))
  assert.match(readFileSync(file, 'utf8'), /\.example\n/)

  writeFileSync(file, 'imported.example\n')
  await dialog.getByRole('radio', { name: 'Import' }).click()
  await dialog.getByRole('option', { name: 'blacklist.txt' }).click()
  await dialog.getByRole('button', { name: 'Import', exact: true }).click()
  await console.becomes("select count(*) from blacklist where entry='imported.example'", '1')
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
})
